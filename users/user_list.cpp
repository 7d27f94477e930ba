// All users with their fields and groups, after one reading of each file.
#include <cstdlib>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "conf/c_list.h"
#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "filesharing/users.h"
#include "users/accounts.h"
#include "users/user_entries.h"

namespace filesharing {
namespace {

// Answers what GetUserInfo and GetUserGroupInfo answer for one user.
class UserDirectory {
 public:
  // `lists` is /etc/usrgrp.info.
  explicit UserDirectory(std::FILE* lists) {
    read_everyone_list(lists);
    read_accounts();
    read_groups(lists);
  }

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

void UserDirectory::read_everyone_list(std::FILE* lists) {
  const std::string value = read_everyone(lists);
  EveryoneReader users(value);
  while (users.next()) {
    quotas_.try_emplace(std::string(users.user().name), users.user().number);
  }
  // Without a list nobody is known.
  everyone_malformed_ = users.malformed() || value.empty();
}

void UserDirectory::read_accounts() {
  for_each_account([&](const passwd& account) {
    accounts_.try_emplace(account.pw_name,
                          Account{account.pw_gecos, static_cast<std::int32_t>(account.pw_uid)});
  });
}

void UserDirectory::read_groups(std::FILE* lists) {
  std::rewind(lists);
  groups_result_ = walk_members(lists, [&](auto group, auto member) {
    if (group_names_.empty() || group_names_.back() != group) {
      group_names_.emplace_back(group);
    }
    Groups& groups = groups_[std::string(member)];
    groups.complete = groups.names.size() == kMostNames;
    if (!groups.complete) {
      groups.names.push_back(static_cast<std::uint32_t>(group_names_.size() - 1));
    }
    return Walk::kOn;
  });
}

Result UserDirectory::fill_info(UserInfo& user) const {
  if (missing(user.name)) {
    return FSH_ARGUMENT;
  }
  if (const auto listed = quotas_.find(user.name); listed != quotas_.end()) {
    fill_from_everyone(user, listed->second);
  } else if (everyone_malformed_) {
    return FSH_USER_UNKNOWN;
  }
  const auto account = accounts_.find(user.name);
  if (account == accounts_.end()) {
    return fill_from_account(user);
  }
  copy_field(user.description, account->second.description);
  user.uid = account->second.uid;
  return FSH_OK;
}

Result UserDirectory::fill_groups(GroupUserInfo& user) const {
  static const Groups kNone;
  const auto found = groups_.find(user.name);
  const Groups& groups = found == groups_.end() ? kNone : found->second;
  if (!groups.complete && groups_result_ != FSH_OK) {
    return groups_result_;
  }
  CStrings names(kMostNames);
  for (const std::uint32_t place : groups.names) {
    names.add(group_names_[place]);
  }
  names.hand_over(user.count, user.list);
  return FSH_OK;
}

Result append_user(CList<UserItem>& users, const UserDirectory& directory, const char* name) {
  UserInfo user{};
  copy_field(user.name, name);
  STEP(directory.fill_info(user));
  UserItem& item = users.append();
  item.user = user;
  item.groups = allocate<GroupUserInfo>();
  copy_field(item.groups->name, name);
  const Result result = directory.fill_groups(*item.groups);
  if (result != FSH_OK) {
    std::free(std::exchange(item.groups, nullptr));
  }
  return result;
}

Result list_users(UserItem** head) {
  Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  const CList<UserNameItem> names(GetUserNameList, FreeUserNameList);
  STEP(names.result());
  const UserDirectory directory(stream.get());
  CList<UserItem> users(FreeUserList);
  for (const UserNameItem& name : names) {
    STEP(append_user(users, directory, name.name));
  }
  *head = users.release();
  // Kept: the stream stays open until the page ends.
  std::ignore = stream.release();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetAllUser(UserItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return list_users(head); });
}

void FreeUserList(UserItem* head) {
  // Kept: the record of groups and its array stay allocated; a page that lists the users ends soon
  // after.
  free_list(head, [](UserItem& item) { FreeGrpUsers(item.groups); });
}
