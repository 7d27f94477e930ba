// fileshare group ...: groups and who is in them.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "cli/confirm.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/verbs.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "filesharing/users.h"

namespace fileshare {
namespace {

constexpr const char* kUnknownGroup = "there is no group of this name";

struct RenameArguments {
  std::string name;
  std::string new_name;
};

struct YesArguments {
  bool yes = false;
};

struct MemberArguments {
  std::string group;
  std::vector<std::string> users;
};

std::string operation_on(const char* verb, const std::string& group) {
  return std::string(verb) + " group " + in_quotes(group);
}

int refuse_operation(const std::string& operation, const std::string& reason) {
  return refuse("can not " + operation + ": " + reason, kFailed);
}

// The list of all groups. FreeGrpList frees nothing, so what a listing holds is freed here.
class AllGroups {
 public:
  AllGroups() : code_(GetAllGroup(&head_)) {}
  AllGroups(const AllGroups&) = delete;
  AllGroups& operator=(const AllGroups&) = delete;
  ~AllGroups() {
    while (head_ != nullptr) {
      GroupItem* next = head_->next;
      FreeGroupUserInfo(head_->users);
      std::free(head_->users);
      FreeGrpShareInfo(head_->shares);
      std::free(head_->shares);
      std::free(head_);
      head_ = next;
    }
  }

  [[nodiscard]] unsigned code() const { return code_; }
  [[nodiscard]] const GroupItem* head() const { return head_; }

  [[nodiscard]] const GroupItem* find(const std::string& name) const {
    const GroupItem* item = head_;
    while (item != nullptr && item->name != name) item = item->next;
    return item;
  }

 private:
  GroupItem* head_ = nullptr;
  unsigned code_;
};

// A group that one of the two files has lost still counts, so that it can be deleted.
bool exists(const std::string& group) {
  return GetGroupId(group.c_str()) != FSH_GROUP_UNKNOWN || AllGroups().find(group) != nullptr;
}

Json described(const GroupItem& group) {
  Json users = Json::array();
  for (int32_t i = 0; i < group.users->count; ++i) users.push_back(group.users->list[i]);
  Json writable = Json::array();
  Json read_only = Json::array();
  for (int32_t i = 0; group.shares != nullptr && i < group.shares->count; ++i) {
    Json& shares = group.shares->rights[i] == FSH_READ_WRITE ? writable : read_only;
    shares.push_back(group.shares->shares[i]);
  }
  return {{"name", group.name},
          {"gid", group.gid == FSH_GROUP_UNKNOWN ? Json() : Json(group.gid)},
          {"users", std::move(users)},
          {"writable_shares", std::move(writable)},
          {"read_only_shares", std::move(read_only)}};
}

int list_groups(const JsonArguments& arguments) {
  const AllGroups groups;
  if (groups.code() != FSH_OK) return report("list the groups", groups.code());
  Json list = Json::array();
  for (const GroupItem* item = groups.head(); item != nullptr; item = item->next) {
    list.push_back(described(*item));
  }
  print_list(list, {"name", "gid", "users", "writable_shares", "read_only_shares"}, arguments.json);
  return kDone;
}

int show_group(const ShowArguments& arguments) {
  const std::string operation = operation_on("show", arguments.name);
  const AllGroups groups;
  if (groups.code() != FSH_OK) return report(operation, groups.code());
  const GroupItem* group = groups.find(arguments.name);
  if (group == nullptr) return refuse_operation(operation, kUnknownGroup);
  print_record(described(*group), arguments.json);
  return kDone;
}

int list_members(const ShowArguments& arguments) {
  const std::string operation = operation_on("list the members of", arguments.name);
  GroupUserInfo group{};
  fill(group.name, arguments.name);
  if (const unsigned code = GetGroupUserInfo(&group); code != FSH_OK) {
    return report(operation, code);
  }
  Json members = Json::array();
  for (int32_t i = 0; i < group.count; ++i) members.push_back({{"name", group.list[i]}});
  FreeGroupUserInfo(&group);
  if (members.empty() && !exists(arguments.name)) return refuse_operation(operation, kUnknownGroup);
  print_list(members, {"name"}, arguments.json);
  return kDone;
}

int add_group_named(const NameArguments& arguments) {
  return report(operation_on("add", arguments.name), AddGroup(arguments.name.c_str()),
                {{FSH_GROUP_NOT_ADDED, "a lock is taken, or the group file could not be written"},
                 {FSH_GROUP_EXISTS, "a group of this name exists"},
                 {FSH_NO_FREE_GID, "every group number from 2000 to 2252 is in use"},
                 {FSH_FAILED, "the list of members could not be written"}});
}

int rename_group(const RenameArguments& arguments) {
  const std::string operation = operation_on("rename", arguments.name);
  if (!exists(arguments.name)) return refuse_operation(operation, kUnknownGroup);
  return report(operation, RenameGroup(arguments.name.c_str(), arguments.new_name.c_str()),
                {{FSH_GROUP_NOT_RENAMED,
                  "a group of the new name exists, a lock is taken, the group has no list of "
                  "members, or the group file could not be written"},
                 {FSH_GROUP_EXISTS, "a group of the new name exists"},
                 {FSH_FAILED, "the list of members could not be written"}});
}

int delete_group(const NameArguments& arguments) {
  const std::string operation = operation_on("delete", arguments.name);
  if (!exists(arguments.name)) return refuse_operation(operation, kUnknownGroup);
  return report(operation, DelGroup(arguments.name.c_str()),
                {{FSH_GROUP_RESERVED, "this group stays"},
                 {FSH_GROUP_NOT_DELETED, "the group file could not be written"},
                 {FSH_REMOVE_ACCESS_BUSY, "a lock of the shares is taken"},
                 {FSH_ACCESS_NOT_REMOVED, "a share's access list could not be written"}});
}

int delete_all_groups(const YesArguments& arguments) {
  const int refused = confirm(arguments.yes, "delete every group and every list of members");
  if (refused != kDone) return refused;
  return report("delete the groups", DelAllGroup(),
                {{FSH_GROUP_NOT_DELETED, "a lock is taken, or a file could not be written"}});
}

using ChangeMembers = unsigned (*)(const char* group, const char* const* users, int count);

unsigned change_members(ChangeMembers change, const MemberArguments& arguments) {
  std::vector<const char*> users;
  for (const std::string& user : arguments.users) users.push_back(user.c_str());
  return change(arguments.group.c_str(), users.data(), static_cast<int>(users.size()));
}

int add_users(const MemberArguments& arguments) {
  const std::string operation = operation_on("add to", arguments.group);
  if (!exists(arguments.group)) return refuse_operation(operation, kUnknownGroup);
  for (const std::string& user : arguments.users) {
    if (UserExist(user.c_str()) == 0) {
      return refuse_operation(operation, "there is no user " + in_quotes(user));
    }
    if (std::count(arguments.users.begin(), arguments.users.end(), user) > 1) {
      return refuse_operation(operation, "user " + in_quotes(user) + " is named more than once");
    }
  }
  return report(operation, change_members(AddUsersToGroup, arguments),
                {{FSH_ADD_MEMBER_BUSY, "a lock is taken"},
                 {FSH_MEMBER_EXISTS, "one of the users is a member already; nobody was added"},
                 {FSH_MEMBER_NOT_ADDED, "a file could not be written or is malformed"}});
}

int remove_users(const MemberArguments& arguments) {
  const std::string operation = operation_on("remove from", arguments.group);
  if (!exists(arguments.group)) return refuse_operation(operation, kUnknownGroup);
  return report(operation, change_members(DelUsersFromGroup, arguments),
                {{FSH_MEMBER_NOT_REMOVED,
                  "a lock is taken, or a file could not be written or is malformed"}});
}

void add_group_name(CLI::App& verb, std::string& name) {
  add_name(verb, name, "NAME", "The group's name", kGroupName);
}

void add_member_arguments(CLI::App& verb, MemberArguments& arguments) {
  add_name(verb, arguments.group, "GROUP", "The group's name", kGroupName);
  verb.add_option("USER", arguments.users, "The users' names")
      ->required()
      ->check(follows(kUserName));
}

void add_showing_verbs(CLI::App& group) {
  auto& list = add_verb(group, "list", "List the groups", list_groups);
  add_json(list, list.arguments.json);
  auto& show = add_verb(group, "show", "Show a group", show_group);
  add_group_name(show, show.arguments.name);
  add_json(show, show.arguments.json);
  auto& members = add_verb(group, "members", "List the users in a group", list_members);
  add_group_name(members, members.arguments.name);
  add_json(members, members.arguments.json);
}

void add_changing_verbs(CLI::App& group) {
  auto& add = add_verb(group, "add", "Add a group without members", add_group_named);
  add_group_name(add, add.arguments.name);
  auto& rename = add_verb(group, "rename", "Give a group another name", rename_group);
  add_group_name(rename, rename.arguments.name);
  add_name(rename, rename.arguments.new_name, "NEW-NAME", "The name it gets", kGroupName);
  auto& removal = add_verb(group, "delete", "Delete a group, from the shares too", delete_group);
  add_group_name(removal, removal.arguments.name);
  auto& all = add_verb(group, "delete-all", "Delete every group", delete_all_groups);
  all.footer(
      "\"everyone\" and \"administrators\" stay in /etc/group; the lists of members, and with "
      "them\n"
      "the quotas of the users, go for all groups. The access lists of the shares stay.");
  add_yes(all, all.arguments.yes);
}

void add_member_verbs(CLI::App& group) {
  auto& add = add_verb(group, "add-user", "Put users into a group", add_users);
  add_member_arguments(add, add.arguments);
  auto& removal = add_verb(group, "remove-user", "Take users out of a group", remove_users);
  add_member_arguments(removal, removal.arguments);
}

}  // namespace

void add_group_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "group", "Groups and their members");
  add_showing_verbs(group);
  add_changing_verbs(group);
  add_member_verbs(group);
}

}  // namespace fileshare
