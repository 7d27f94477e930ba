// The names of the listed users.
#include <unistd.h>

#include <cstring>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "filesharing/users.h"
#include "users/account_line.h"

namespace filesharing {
namespace {

Result read_user_names(UserNameItem** head) {
  Stream accounts = open_stream(paths::kPasswd, "r");
  if (!accounts) {
    return FSH_CANNOT_OPEN;
  }
  CList<UserNameItem> names(FreeUserNameList);
  for (BlockLineReader line(accounts.get()); line.next();) {
    if (is_blank_line(line.text())) {
      continue;
    }
    const Halves name = split_at(line.text(), ':');
    // No record can hold a name with a zero byte: cut there, it could be another user's.
    if (!name.found || name.head.find('\0') != std::string_view::npos) {
      return FSH_MALFORMED;
    }
    if (name.head.size() > kMostNameCharacters) {
      continue;
    }
    const auto uid = parse_uid(name.tail);
    if (!uid) {
      return FSH_MALFORMED;
    }
    if (is_listed_uid(*uid)) {
      copy_field(names.append().name, name.head);
    }
  }
  *head = names.release();
  accounts.reset();
  sync();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetUserNameList(UserNameItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return read_user_names(head); });
}

void FreeUserNameList(UserNameItem* head) {
  free_list(head);
}

int UserExist(const char* name) {
  for (const UserNameItem& user : CList<UserNameItem>(GetUserNameList, FreeUserNameList)) {
    if (name != nullptr && std::strcmp(user.name, name) == 0) {
      return 1;
    }
  }
  return 0;
}

unsigned GetNumOfUsers(void) {
  const CList<UserNameItem> names(GetUserNameList, FreeUserNameList);
  return names.result() == FSH_OK ? names.size() : FSH_FAILED;
}
