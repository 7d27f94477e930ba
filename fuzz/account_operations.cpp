// Users, groups, membership, and the files of keys.
#include "filesharing/filesharing.h"
#include "fuzz/arguments.h"
#include "fuzz/changed_files.h"

namespace fuzz {
namespace {

UserInfo user_of(Arguments& arguments) {
  UserInfo user = {};
  arguments.field(user.name);
  arguments.field(user.description);
  arguments.field(user.password);
  user.quota = static_cast<std::uint32_t>(arguments.number());
  user.uid = arguments.number();
  return user;
}

void add_user(Arguments& arguments) {
  const UserInfo user = user_of(arguments);
  static_cast<void>(AddUser(&user));
}

void update_user(Arguments& arguments) {
  const char* const old_name = arguments.text();
  const UserInfo user = user_of(arguments);
  static_cast<void>(UpdateUser(old_name, &user));
}

void get_user_info(Arguments& arguments) {
  UserInfo user = user_of(arguments);
  static_cast<void>(GetUserInfo(&user));
}

void set_quota(Arguments& arguments) {
  const char* const name = arguments.text();
  static_cast<void>(SetUserQuota(name, static_cast<std::uint32_t>(arguments.number())));
}

void act_group(Arguments& arguments) {
  const char* const name = arguments.text();
  static_cast<void>(SysActGroup(name, static_cast<unsigned>(arguments.number())));
}

void keep_groups(Arguments& arguments) {
  const std::vector<const char*> kept = arguments.texts();
  static_cast<void>(SysDelAllGroup(kept.data(), static_cast<int>(kept.size())));
}

void delete_lists(Arguments& arguments) {
  const char* const path = changed_file(arguments.number());
  const std::vector<const char*> names = arguments.texts();
  static_cast<void>(DelAllGRP(names.data(), static_cast<int>(names.size()), path));
}

void get_group_shares(Arguments& arguments) {
  GroupItem group = {};
  arguments.field(group.name);
  GroupShareInfo* const shares = GetGrpShares(&group);
  FreeGrpShareInfo(shares);
  std::free(shares);
}

void delete_key_item(Arguments& arguments) {
  const char* const path = changed_file(arguments.number());
  const char* const key = arguments.text();
  const char* const separator = arguments.text();
  static_cast<void>(DelKeyItem(key, path, separator == nullptr ? '\0' : *separator));
}

template <auto Function>
void in_file(Arguments& arguments) {
  const char* const path = changed_file(arguments.number());
  static_cast<void>(Function(arguments.text(), path));
}

template <auto Function>
void renamed_in_file(Arguments& arguments) {
  const char* const path = changed_file(arguments.number());
  const char* const old_name = arguments.text();
  static_cast<void>(Function(old_name, arguments.text(), path));
}

constexpr Operation kOperations[] = {
    {"AddGroup", with_text<AddGroup>},
    {"AddUser", add_user},
    {"AddUserToGroups", with_list<AddUserToGroups>},
    {"AddUsersToGroup", with_list<AddUsersToGroup>},
    {"AddUsersToSysGroup", with_list<AddUsersToSysGroup>},
    {"BackupConFiles", with_number<BackupConFiles>},
    {"DelAllGRP", delete_lists},
    {"DelAllGroup", with_nothing<DelAllGroup>},
    {"DelAllUser", with_nothing<DelAllUser>, Leaves::kStreamsAndMemory},
    {"DelGroup", with_text<DelGroup>},
    {"DelKeyFromConf", in_file<DelKeyFromConf>},
    {"DelKeyItem", delete_key_item},
    {"DelUser", with_text<DelUser>},
    {"DelUserFromGroups", with_list<DelUserFromGroups>},
    {"DelUsersFromGroup", with_list<DelUsersFromGroup>},
    {"GetAllGroup", with_head<GetAllGroup, FreeGrpList, GroupItem>, Leaves::kStreamsAndMemory},
    {"GetAllUser", with_head<GetAllUser, FreeUserList, UserItem>, Leaves::kStreamsAndMemory},
    {"GetGroupId", with_text<GetGroupId>},
    {"GetGroupUserInfo", with_record<GetGroupUserInfo, FreeGroupUserInfo, GroupUserInfo>},
    {"GetGrpNameList", with_head<GetGrpNameList, FreeGrpNameList, GroupNameItem>},
    {"GetGrpShares", get_group_shares, Leaves::kStreamsAndMemory},
    {"GetNumOfGrps", with_nothing<GetNumOfGrps>},
    {"GetNumOfUsers", with_nothing<GetNumOfUsers>},
    {"GetUserGroupInfo", with_record<GetUserGroupInfo, FreeUserGroupInfo, GroupUserInfo>},
    {"GetUserInfo", get_user_info},
    {"GetUserNameList", with_head<GetUserNameList, FreeUserNameList, UserNameItem>},
    {"GroupExist", with_text<GroupExist>},
    {"IsUserPassCorrect", with_two_texts<IsUserPassCorrect>},
    {"ItemExist", in_file<ItemExist>},
    {"Lock", with_number<Lock>},
    {"RenameGroup", with_two_texts<RenameGroup>},
    {"RenameKey", renamed_in_file<RenameKey>},
    {"RenameKey1", renamed_in_file<RenameKey1>},
    {"RenameSect", renamed_in_file<RenameSect>},
    {"RestoreConFiles", with_number<RestoreConFiles>},
    {"SetUserQuota", set_quota},
    {"SysActGroup", act_group},
    {"SysDelAllGroup", keep_groups},
    {"SysRenGroupName", with_two_texts<SysRenGroupName>},
    {"Unlock", with_number<Unlock>},
    {"UpdateDiskUserGroupInfo", with_nothing<UpdateDiskUserGroupInfo>},
    {"UpdateUser", update_user},
    {"UserExist", with_text<UserExist>},
    {"UserInGroup", with_two_texts<UserInGroup>},
};

}  // namespace

const Operation* find_account_operation(std::string_view name) {
  return find_operation(kOperations, name);
}

}  // namespace fuzz
