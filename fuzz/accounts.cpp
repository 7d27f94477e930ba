// The lists of users, groups and members, their lines, and those of files that services share.
// Input: a user's and a group's name, then /etc/passwd, a line "@", /etc/group, a line "@", and
// /etc/usrgrp.info.
#include <cstring>

#include "conf/line_rules.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "filesharing/users.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/outside.h"
#include "groups/group_lines.h"
#include "users/accounts.h"
#include "users/user_entries.h"

namespace {

using namespace filesharing;

void parse(const std::string& line) {
  const GroupLine group = parse_group_line(line);
  fuzz::require(std::string(group.name).append(group.rest) == line);
  fuzz::require(!group.has_members_field || group.gid);
  const auto uid = parse_uid(split_at(line, ':').tail);
  fuzz::require(uid.has_value() == group.has_members_field);
  fuzz::require(!uid || uid == group.gid);
}

// Taking entries out makes no line longer, but for the line feed that it may get.
void edit_list(const std::string& name, const std::string& line) {
  const auto added = line_with_entry(line, {name, 7});
  const auto removed = line_with_replaced(line, name, std::nullopt);
  if (removed) fuzz::require(removed->size() <= line.size() + 1);
  if (added) (void)line_with_replaced(*added, name, ListEntry{"renamed", 4294967295U});
}

void apply(const std::string& mark, const std::string& text) {
  const std::vector<LineRule> rules = {{.mark = mark, .line = "new\n", .appended = 1},
                                       {.mark = "#", .at_start = true, .line = ""}};
  const std::string whole = apply_rules(text, rules);
  fuzz::require(whole.find("new\n") != std::string::npos);
  (void)apply_rules(text, rules, 127);
}

std::string take_file(std::string& text) {
  const std::size_t end = text.find("@\n");
  std::string file = text.substr(0, end);
  text.erase(0, end == std::string::npos ? end : end + 2);
  return file;
}

template <class Item>
unsigned count(const Item* item) {
  unsigned number = 0;
  for (; item != nullptr; item = item->next) {
    fuzz::require(strnlen(item->name, sizeof item->name) <= 20);
    ++number;
  }
  return number;
}

// What is listed exists, and is counted.
void list_users() {
  UserNameItem* users = nullptr;
  if (GetUserNameList(&users) != FSH_OK) {
    fuzz::require(GetNumOfUsers() == FSH_FAILED);
    return;
  }
  fuzz::require(count(users) == GetNumOfUsers());
  if (users != nullptr && *users->name != '\0') fuzz::require(UserExist(users->name) == 1);
  FreeUserNameList(users);
}

void list_groups() {
  GroupNameItem* groups = nullptr;
  if (GetGrpNameList(&groups) != FSH_OK) {
    fuzz::require(GetNumOfGrps() == FSH_NO_GROUP_LIST);
    return;
  }
  fuzz::require(count(groups) == GetNumOfGrps());
  if (groups != nullptr && *groups->name != '\0') fuzz::require(GroupExist(groups->name) == 1);
  FreeGrpNameList(groups);
}

void list_members(unsigned (*read)(GroupUserInfo*), const std::string& name) {
  GroupUserInfo record = {};
  std::memcpy(record.name, name.data(), std::min(name.size(), sizeof record.name));
  if (read(&record) != FSH_OK) return;
  fuzz::require(record.count >= 0 && record.count <= 255);
  fuzz::require((record.list == nullptr) == (record.count == 0));
  for (int at = 0; at < record.count; ++at) fuzz::require(record.list[at] != nullptr);
  FreeGroupUserInfo(&record);
}

void read_files(const std::string& user, const std::string& group, std::string text) {
  std::string passwd = take_file(text);
  std::string groups = take_file(text);
  // A name with a zero byte is listed by what stands before it, and not found by that.
  if ((passwd + groups).find('\0') != std::string::npos) return;
  const fuzz::Outside outside;
  fuzz::Outside::serve("/etc/passwd", passwd);
  fuzz::Outside::serve("/etc/group", groups);
  fuzz::Outside::serve("/etc/usrgrp.info", text);
  const fuzz::Leftovers leftovers(fuzz::Leaves::kNothing);
  list_users();
  list_groups();
  list_members(GetGroupUserInfo, group);
  list_members(GetUserGroupInfo, user);
  (void)UserInGroup(user.c_str(), group.c_str());
  (void)GetGroupId(group.c_str());
  (void)UserExist(user.c_str());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string user = input.take_line();
  const std::string group = input.take_line();
  const std::string text = input.rest();
  for (std::string_view rest = text; !rest.empty();) {
    const std::string line(take_line(rest));
    parse(line);
    edit_list(user, line);
  }
  apply(user, text);
  read_files(user, group, text);
  return 0;
}
