// fileshare user ...: adding, changing and deleting accounts.
#include "cli/user_change_verbs.h"

#include <cstring>
#include <limits>
#include <optional>

#include "cli/confirm.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/password.h"
#include "cli/record_text.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/users.h"

namespace fileshare {
namespace {

constexpr const char* kPasswordHelp =
    "The password is typed at the terminal or is one line of standard input; empty for none.";
constexpr const char* kMegabytes = "Megabytes that the user can store on each disk, 0 for no limit";
constexpr const char* kBusyOrNotWritten =
    "another change is under way (see lock list), or a file can not be written";
constexpr std::int32_t kFirstUid = 2000;

struct AddArguments {
  std::string name;
  std::string description;
  std::uint32_t quota = 0;
  std::vector<std::string> groups;
};

struct UpdateArguments {
  std::string name;
  std::optional<std::string> description;
  std::optional<std::uint32_t> quota;
  std::int32_t uid = 0;
};

struct RenameArguments {
  std::string name;
  std::string new_name;
};

struct QuotaArguments {
  std::string name;
  std::optional<std::uint32_t> quota;
};

struct AllArguments {
  bool yes = false;
};

// Erases the password of a record when it goes.
class PasswordEraser {
 public:
  explicit PasswordEraser(UserInfo& user) : user_(user) {}
  PasswordEraser(const PasswordEraser&) = delete;
  PasswordEraser& operator=(const PasswordEraser&) = delete;
  ~PasswordEraser() { explicit_bzero(user_.password, sizeof user_.password); }

 private:
  UserInfo& user_;
};

// From 256 up a code is the status of Samba's password tool.
Reason tool_failure(unsigned code) {
  return {code >= 256 ? code : unsigned{FSH_OK}, "Samba's password tool failed"};
}

int read_password_of(const std::string& name, UserInfo& user) {
  Secret password;
  const int status = read_new_password("Password of user " + in_quotes(name), password);
  if (status == kDone) fill(user.password, password.text());
  return status;
}

int join_groups(const AddArguments& arguments) {
  if (arguments.groups.empty()) return kDone;
  std::vector<const char*> groups;
  for (const std::string& group : arguments.groups) groups.push_back(group.c_str());
  const unsigned code =
      AddUserToGroups(arguments.name.c_str(), groups.data(), static_cast<int>(groups.size()));
  return report("put the new user " + in_quotes(arguments.name) + " into the groups", code,
                {{FSH_MEMBER_EXISTS, "one of them has the user already"},
                 {FSH_ADD_MEMBER_BUSY, "another change is under way (see lock list)"},
                 {FSH_MEMBER_NOT_ADDED, "a group's members can not be rewritten"}});
}

int add_user(const AddArguments& arguments) {
  UserInfo user{};
  const PasswordEraser eraser(user);
  fill(user.name, arguments.name);
  fill(user.description, arguments.description);
  user.quota = arguments.quota;
  if (const int status = read_password_of(arguments.name, user); status != kDone) return status;
  const unsigned code = AddUser(&user);
  if (code == FSH_OK) return join_groups(arguments);
  return report("add user " + in_quotes(arguments.name), code,
                {{FSH_USER_EXISTS, "a user of this name exists"},
                 {FSH_USER_NOT_ADDED, kBusyOrNotWritten},
                 {FSH_QUOTA_FAILED, "the quota can not be set"},
                 tool_failure(code)});
}

int refuse_unknown(const std::string& operation) {
  return report(operation, FSH_USER_UNKNOWN, {{FSH_USER_UNKNOWN, "there is no user of this name"}});
}

// Fills user with what is stored, so that UpdateUser leaves it as it is. The system's own accounts
// are no users: the library would change them too.
int look_up(const std::string& operation, const std::string& name, UserInfo& user) {
  if (UserExist(name.c_str()) == 0) return refuse_unknown(operation);
  fill(user.name, name);
  const unsigned code = GetUserInfo(&user);
  fill(user.password, FSH_PASSWORD_PLACEHOLDER);  // also for a user who is on no list
  return report(operation, code, {{FSH_USER_UNKNOWN, "the list of quotas is malformed"}});
}

int change(const std::string& operation, const std::string& name, const UserInfo& user) {
  const unsigned code = UpdateUser(name.c_str(), &user);
  return report(operation, code,
                {{FSH_USER_NOT_UPDATED,
                  name == user.name ? "a file can not be written"
                                    : "the new name is taken, or a file can not be written"},
                 {FSH_UPDATE_USER_BUSY, "another change is under way (see lock list)"},
                 {FSH_USER_LIST_NOT_WRITTEN, "the list of quotas can not be written"},
                 {FSH_QUOTA_FAILED, "the quota can not be set"},
                 tool_failure(code)});
}

int update_user(const UpdateArguments& arguments) {
  const std::string operation = "update user " + in_quotes(arguments.name);
  UserInfo user{};
  if (const int status = look_up(operation, arguments.name, user); status != kDone) return status;
  if (arguments.description) fill(user.description, *arguments.description);
  user.quota = arguments.quota.value_or(user.quota);
  user.uid = arguments.uid;
  return change(operation, arguments.name, user);
}

int set_password(const NameArguments& arguments) {
  const std::string operation = "set the password of user " + in_quotes(arguments.name);
  UserInfo user{};
  const PasswordEraser eraser(user);
  if (const int status = look_up(operation, arguments.name, user); status != kDone) return status;
  if (const int status = read_password_of(arguments.name, user); status != kDone) return status;
  return change(operation, arguments.name, user);
}

int rename_user(const RenameArguments& arguments) {
  const std::string operation =
      "rename user " + in_quotes(arguments.name) + " to " + in_quotes(arguments.new_name);
  UserInfo user{};
  if (const int status = look_up(operation, arguments.name, user); status != kDone) return status;
  fill(user.name, arguments.new_name);
  return change(operation, arguments.name, user);
}

// The quota tool goes through one file, which the lock of the list of users guards.
int apply_quota(const std::string& operation, const UserInfo& user) {
  if (Lock(FSH_FILE_USER) != 0) {
    return refuse("can not " + operation + ": another change is under way (see lock list)",
                  kFailed);
  }
  const unsigned code = SetUserQuota(user.name, user.quota);
  Unlock(FSH_FILE_USER);
  return report(operation, code, {{FSH_QUOTA_FAILED, "the quota tool failed"}});
}

int set_quota(const QuotaArguments& arguments) {
  const std::string operation = "set the quota of user " + in_quotes(arguments.name);
  UserInfo user{};
  if (const int status = look_up(operation, arguments.name, user); status != kDone) return status;
  if (!arguments.quota) return apply_quota(operation, user);
  user.quota = *arguments.quota;
  return change(operation, arguments.name, user);
}

// On the list of quotas without an account: what a deletion by other means leaves.
bool is_left_over(const std::string& name) {
  UserInfo user{};
  fill(user.name, name);
  return GetUserInfo(&user) == FSH_USER_UNKNOWN && user.password[0] != '\0';
}

int delete_user(const NameArguments& arguments) {
  const std::string operation = "delete user " + in_quotes(arguments.name);
  if (UserExist(arguments.name.c_str()) == 0 && !is_left_over(arguments.name)) {
    return refuse_unknown(operation);
  }
  return report(
      operation, DelUser(arguments.name.c_str()),
      {{FSH_USER_RESERVED, "this user always exists"}, {FSH_USER_NOT_DELETED, kBusyOrNotWritten}});
}

int delete_all_users(const AllArguments& arguments) {
  const int status = confirm(arguments.yes, R"(delete every user but "admin" and "guest")");
  if (status != kDone) return status;
  return report("delete all users", DelAllUser(), {{FSH_USER_NOT_DELETED, kBusyOrNotWritten}});
}

void add_user_name(CLI::App& verb, std::string& name) {
  add_name(verb, name, "NAME", "The user's name", kUserName);
}

void add_changing(CLI::App& group) {
  auto& update = add_verb(group, "update", "Change a user; what is not given stays", update_user);
  add_user_name(update, update.arguments.name);
  update.add_option("--description", update.arguments.description, "Full name or comment")
      ->check(follows(kDescription));
  update.add_option("--quota", update.arguments.quota, kMegabytes);
  update.add_option("--uid", update.arguments.uid, "Numeric user id")
      ->check(CLI::Range(kFirstUid, std::numeric_limits<std::int32_t>::max()));
  auto& rename = add_verb(group, "rename", "Give a user another name", rename_user);
  add_user_name(rename, rename.arguments.name);
  add_name(rename, rename.arguments.new_name, "NEW-NAME", "The new name", kUserName);
  auto& password = add_verb(group, "set-password", "Give a user another password", set_password);
  password.footer(kPasswordHelp);
  add_user_name(password, password.arguments.name);
  auto& quota = add_verb(group, "quota", "Limit what a user can store", set_quota);
  quota.footer("Without MEGABYTES the present limit is set again, for a disk that is new.");
  add_user_name(quota, quota.arguments.name);
  quota.add_option("MEGABYTES", quota.arguments.quota, kMegabytes);
}

}  // namespace

void add_user_change_verbs(CLI::App& group) {
  auto& add = add_verb(group, "add", "Add a user", add_user);
  add.footer(kPasswordHelp);
  add_user_name(add, add.arguments.name);
  add.add_option("--description", add.arguments.description, "Full name or comment")
      ->check(follows(kDescription));
  add.add_option("--quota", add.arguments.quota, kMegabytes);
  add.add_option("--group", add.arguments.groups, "A group that the user joins; may be repeated")
      ->allow_extra_args(false)
      ->check(follows(kGroupName));
  add_changing(group);
  auto& remove = add_verb(group, "delete", "Delete a user; shares and files stay", delete_user);
  add_user_name(remove, remove.arguments.name);
  auto& remove_all = add_verb(group, "delete-all", R"(Delete every user but "admin" and "guest")",
                              delete_all_users);
  add_yes(remove_all, remove_all.arguments.yes);
}

}  // namespace fileshare
