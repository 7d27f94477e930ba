// All groups with their gids, members and shares, after one reading of each file.
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

// The access lists of all shares by group.
class SharesByGroup {
 public:
  // When the shares cannot be listed, no group has any.
  SharesByGroup() : shares_(GetAllShare, FreeShareList) {
    for (const ShareInfo& share : shares_) {
      for (const ShareGroup& group : Nodes(share.groups)) {
        std::vector<Entry>& entries = entries_[std::string(field_text(group.name))];
        // The first entry of the group in an access list counts.
        if (entries.empty() || entries.back().share != &share) {
          entries.push_back({.share = &share, .rights = group.rights});
        }
      }
    }
  }

  // A record of the heap; null for a group without shares.
  GroupShareInfo* record_of(const char* group) const {
    const auto found = entries_.find(group);
    if (found == entries_.end()) {
      return nullptr;
    }
    std::unique_ptr<GroupShareInfo, void (*)(void*)> record(allocate<GroupShareInfo>(), std::free);
    copy_field(record->name, group);
    CStrings shares(FSH_MOST_GROUP_SHARES);
    for (const Entry& entry : found->second) {
      if (!shares.full()) {
        record->rights[shares.count()] = entry.rights;
        shares.add(entry.share->name);
      }
    }
    shares.hand_over(record->count, record->shares);
    return record.release();
  }

 private:
  struct Entry {
    const ShareInfo* share;
    std::int32_t rights;
  };

  CList<ShareInfo> shares_;
  std::unordered_map<std::string, std::vector<Entry>> entries_;
};

// Answers what GetGroupId, GetGroupUserInfo and GetGrpShares answer for one group.
class GroupDirectory {
 public:
  // `lists` is /etc/usrgrp.info.
  explicit GroupDirectory(std::FILE* lists) {
    for (LineReader line(lists); line.next();) {
      const Halves list = split_at(line.text(), '=');
      if (list.found) {
        lists_.try_emplace(std::string(list.head), list.tail);
      }
    }
    if (const Stream stream = open_stream(paths::kGroup, "r")) {
      for (LineReader line(stream.get()); line.next();) {
        const GroupLine group = parse_group_line(line.text());
        if (group.gid) {
          gids_.try_emplace(std::string(group.name), *group.gid);
        }
      }
    }
  }

  std::int32_t gid(const char* group) const {
    const auto found = gids_.find(group);
    return missing(group) || found == gids_.end() ? FSH_GROUP_UNKNOWN : found->second;
  }

  Result fill_users(GroupUserInfo& group) const {
    if (missing(group.name)) {
      return FSH_ARGUMENT;
    }
    const auto found = lists_.find(group.name);
    return fill_members(found == lists_.end() ? "" : found->second, group);
  }

  GroupShareInfo* shares(const char* group) {
    if (missing(group)) {
      return nullptr;
    }
    return guarded(static_cast<GroupShareInfo*>(nullptr), [&] {
      if (!shares_) {
        shares_.emplace();
      }
      return shares_->record_of(group);
    });
  }

 private:
  // Of lines of one name the first counts.
  std::unordered_map<std::string, std::int32_t> gids_;
  std::unordered_map<std::string, std::string> lists_;
  std::optional<SharesByGroup> shares_;  // not read before someone asks
};

Result append_group(CList<GroupItem>& groups, GroupDirectory& directory, std::string_view line) {
  GroupItem& item = groups.append();
  const Halves group = split_at(line, '=');
  if (group.head.empty() || group.tail.empty()) {
    return FSH_MALFORMED;
  }
  copy_field(item.name, group.head);
  item.gid = directory.gid(std::string(group.head).c_str());
  item.users = allocate<GroupUserInfo>();
  copy_field(item.users->name, group.head);
  STEP(directory.fill_users(*item.users));
  item.shares = directory.shares(item.name);
  return FSH_OK;
}

Result list_groups(GroupItem** head) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  GroupDirectory directory(stream.get());
  std::rewind(stream.get());
  CList<GroupItem> groups(FreeGrpList);  // Kept: after a failure what was read is lost
  for (LineReader line(stream.get()); line.next();) {
    if (!is_blank_line(line.text())) {
      STEP(append_group(groups, directory, line.text()));
    }
  }
  *head = groups.release();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetAllGroup(GroupItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return list_groups(head); });
}

void FreeGrpList(GroupItem*) {
  // Kept: nothing is freed; a page that lists the groups ends soon after.
}
