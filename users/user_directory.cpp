#include "users/user_directory.h"

#include "conf/c_list.h"
#include "conf/member_list.h"
#include "conf/text.h"
#include "users/accounts.h"
#include "users/everyone_list.h"

namespace filesharing {

UserDirectory::UserDirectory(std::FILE* lists) {
  read_everyone_list(lists);
  read_accounts();
  read_groups(lists);
}

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
    fill_from_list(user, listed->second);
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

}  // namespace filesharing
