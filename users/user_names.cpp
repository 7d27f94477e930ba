// The names of the listed users.
#include <unistd.h>

#include <cstring>

#include "conf/heap_list.h"
#include "conf/line_reader.h"
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
  HeapList<UserNameItem> names(FreeUserNameList);
  for (BlockLineReader line(accounts.get()); line.next();) {
    if (is_blank_line(line.text())) {
      continue;
    }
    const Halves name = split_at(line.text(), ':');
    // No record can hold a name with a zero byte: cut there, it could be another user's.
    if (!name.found || name.head.find('\0') != std::string_view::npos) {
      return FSH_MALFORMED;
    }
    if (name.head.size() > kMostUserNameCharacters) {
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

// The list of names while it is looked at; empty when the users can not be listed.
class UserNames {
 public:
  UserNames() : listed_(GetUserNameList(&head_) == FSH_OK) {}
  UserNames(const UserNames&) = delete;
  UserNames& operator=(const UserNames&) = delete;
  ~UserNames() { FreeUserNameList(listed_ ? head_ : nullptr); }

  bool listed() const { return listed_; }
  const UserNameItem* head() const { return listed_ ? head_ : nullptr; }

 private:
  UserNameItem* head_ = nullptr;
  bool listed_;
};

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
  const UserNames names;
  for (const UserNameItem* item = names.head(); item != nullptr; item = item->next) {
    if (name != nullptr && std::strcmp(item->name, name) == 0) {
      return 1;
    }
  }
  return 0;
}

unsigned GetNumOfUsers(void) {
  const UserNames names;
  if (!names.listed()) {
    return FSH_FAILED;
  }
  unsigned count = 0;
  for (const UserNameItem* item = names.head(); item != nullptr; item = item->next) {
    ++count;
  }
  return count;
}
