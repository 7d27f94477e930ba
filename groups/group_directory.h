// What GetGroupId, GetGroupUserInfo and GetGrpShares tell, for many groups after one reading of the
// files.
#ifndef FILESHARING_GROUPS_GROUP_DIRECTORY_H
#define FILESHARING_GROUPS_GROUP_DIRECTORY_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "conf/c_list.h"
#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// The access lists of all shares by group.
class SharesByGroup {
 public:
  SharesByGroup();

  // A record of the heap; null for a group without shares.
  GroupShareInfo* record_of(const char* group) const;

 private:
  CList<ShareInfo> shares_;
  struct Entry {
    const ShareInfo* share;
    std::int32_t rights;
  };
  std::unordered_map<std::string, std::vector<Entry>> entries_;
};

class GroupDirectory {
 public:
  // `lists` is /etc/usrgrp.info.
  explicit GroupDirectory(std::FILE* lists);

  // The same results as the function has.
  std::int32_t gid(const char* group) const;
  Result fill_users(GroupUserInfo& group) const;
  GroupShareInfo* shares(const char* group);

 private:
  // Of lines of one name the first counts.
  std::unordered_map<std::string, std::int32_t> gids_;
  std::unordered_map<std::string, std::string> lists_;
  std::optional<SharesByGroup> shares_;  // not read before someone asks
};

}  // namespace filesharing

#endif
