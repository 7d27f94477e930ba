// All users with their fields and groups.
#include <cstdlib>
#include <tuple>
#include <utility>

#include "conf/c_list.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/users.h"
#include "users/user_directory.h"

namespace filesharing {
namespace {

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

Result read_users(UserItem** head) {
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
  return guarded(FSH_NO_MEMORY, [&] { return read_users(head); });
}

void FreeUserList(UserItem* head) {
  free_list(head, [](UserItem& item) {
    if (item.groups == nullptr) {
      return;
    }
    // Kept: the record and its array stay allocated; a page that lists the users ends soon after.
    for (int i = 0; i < item.groups->count; ++i) {
      std::free(item.groups->list[i]);
    }
  });
}
