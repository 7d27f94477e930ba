// fileshare user ...: accounts.
#include <cstdlib>
#include <iostream>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/password.h"
#include "cli/record_text.h"
#include "cli/user_change_verbs.h"
#include "cli/verbs.h"
#include "filesharing/groups.h"
#include "filesharing/users.h"

namespace fileshare {
namespace {

constexpr const char* kQuotaHelp = "Quotas are in megabytes, 0 for none.";

std::string operation_on(const char* verb, const std::string& name) {
  return std::string(verb) + " user " + in_quotes(name);
}

Json described(const UserInfo& user, const GroupUserInfo& membership) {
  Json groups = Json::array();
  for (int32_t i = 0; i < membership.count; ++i) groups.push_back(membership.list[i]);
  return {{"name", user.name},
          {"uid", user.uid},
          {"quota", user.quota},
          {"description", user.description},
          {"groups", std::move(groups)}};
}

// FreeUserList leaves the membership records and their arrays; nobody else knows of them.
void free_users(UserItem* users) {
  std::vector<GroupUserInfo*> memberships;
  for (const UserItem* item = users; item != nullptr; item = item->next) {
    memberships.push_back(item->groups);
  }
  FreeUserList(users);
  for (GroupUserInfo* membership : memberships) {
    std::free(membership->list);
    std::free(membership);
  }
}

int list_users(const JsonArguments& arguments) {
  UserItem* users = nullptr;
  const unsigned code = GetAllUser(&users);
  if (code != FSH_OK) {
    return report("list the users", code, {{FSH_USER_UNKNOWN, "the list of quotas is malformed"}});
  }
  Json list = Json::array();
  for (const UserItem* item = users; item != nullptr; item = item->next) {
    list.push_back(described(item->user, *item->groups));
  }
  free_users(users);
  print_list(list, {"name", "uid", "quota", "description", "groups"}, arguments.json);
  return kDone;
}

int show_user(const ShowArguments& arguments) {
  const std::string operation = operation_on("show", arguments.name);
  UserInfo user{};
  fill(user.name, arguments.name);
  if (const unsigned code = GetUserInfo(&user); code != FSH_OK) {
    const bool listed = UserExist(user.name) == 1;
    return report(operation, code,
                  {{FSH_USER_UNKNOWN,
                    listed ? "the list of quotas is malformed" : "there is no user of this name"}});
  }
  GroupUserInfo membership{};
  fill(membership.name, arguments.name);
  if (const unsigned code = GetUserGroupInfo(&membership); code != FSH_OK) {
    return report(operation, code);
  }
  Json shown = described(user, membership);
  FreeUserGroupInfo(&membership);
  // Without an entry in the list of everyone the account is only half there.
  shown["registered"] = user.password[0] != '\0';
  print_record(shown, arguments.json);
  return kDone;
}

int check_password(const NameArguments& arguments) {
  Secret password;
  const int status = read_password("Password of user " + in_quotes(arguments.name), password);
  if (status != kDone) return status;
  if (IsUserPassCorrect(arguments.name.c_str(), password.text()) == 1) {
    std::cout << "correct\n";
    return kDone;
  }
  return refuse("the password of user " + in_quotes(arguments.name) + " is not correct", kFailed);
}

void add_user_name(CLI::App& verb, std::string& name) {
  add_name(verb, name, "NAME", "The user's name", kUserName);
}

}  // namespace

void add_user_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "user", "Accounts of users");
  auto& list = add_verb(group, "list", "List the users", list_users);
  list.footer(kQuotaHelp);
  add_json(list, list.arguments.json);
  auto& show = add_verb(group, "show", "Show a user", show_user);
  show.footer(kQuotaHelp);
  add_user_name(show, show.arguments.name);
  add_json(show, show.arguments.json);
  auto& check =
      add_verb(group, "check-password", "Tell whether a password is a user's", check_password);
  check.footer(
      "The password is typed at the terminal or is one line of standard input.\n"
      "Exit status 0: it is the user's; 1: it is not.");
  add_user_name(check, check.arguments.name);
  add_user_change_verbs(group);
}

}  // namespace fileshare
