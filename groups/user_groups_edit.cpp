#include "groups/user_groups_edit.h"

#include <string>

#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/text.h"
#include "filesharing/users.h"

namespace filesharing {
namespace {

Result append_user(std::string& members, std::string_view name) {
  UserInfo user{};
  if (name.size() >= sizeof user.name) {
    return FSH_USER_UNKNOWN;
  }
  copy_field(user.name, name);
  STEP(GetUserInfo(&user));
  append_member(members, name, std::to_string(user.quota));
  return FSH_OK;
}

Result edit_members(std::string_view value, const UserGroupsEdit& edit, std::string& members) {
  MemberReader reader(value);
  while (reader.next()) {
    if (!holds(edit.removed, reader.member().name)) {
      append_member(members, reader.member().name, reader.member().number);
    }
  }
  if (reader.malformed()) {
    return FSH_MALFORMED;
  }
  for (const std::string_view user : edit.added) {
    STEP(append_user(members, user));
  }
  return FSH_OK;
}

}  // namespace

Result edit_user_groups(const UserGroupsEdit& edit) {
  return rewrite_lines(paths::kUserGroups, {}, edit.copy_back,
                       [&](std::string_view line, FileRewrite& rewrite) -> Result {
                         const Halves group = split_at(line, '=');
                         if (!group.found || !holds(edit.groups, group.head)) {
                           rewrite.write(line);
                           return FSH_OK;
                         }
                         std::string members;
                         STEP(edit_members(group.tail, edit, members));
                         rewrite.write(std::string(group.head) + '=' + members + '\n');
                         return FSH_OK;
                       });
}

}  // namespace filesharing
