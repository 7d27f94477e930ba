// What GetUserInfo and GetUserGroupInfo tell, for many users after one reading of the files.
#ifndef FILESHARING_USERS_USER_DIRECTORY_H
#define FILESHARING_USERS_USER_DIRECTORY_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

class UserDirectory {
 public:
  // `lists` is /etc/usrgrp.info.
  explicit UserDirectory(std::FILE* lists);

  // The same results, and the same fields, as the function has for a record with this name alone.
  Result fill_info(UserInfo& user) const;
  Result fill_groups(GroupUserInfo& user) const;

 private:
  struct Account {
    std::string description;
    std::int32_t uid;
  };
  struct Groups {
    std::vector<std::uint32_t> names;  // their places in group_names_
    bool complete = false;  // there are more than a record holds: nothing behind them is looked at
  };

  void read_everyone_list(std::FILE* lists);
  void read_accounts();
  void read_groups(std::FILE* lists);

  // Of entries of one name the first counts.
  std::unordered_map<std::string, std::string> quotas_;
  bool everyone_malformed_ = false;  // behind the users in quotas_
  std::unordered_map<std::string, Account> accounts_;
  std::vector<std::string> group_names_;
  std::unordered_map<std::string, Groups> groups_;
  Result groups_result_ = FSH_OK;  // for users whose groups are not complete
};

}  // namespace filesharing

#endif
