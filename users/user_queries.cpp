// Looking users up: the names of all, the record of one, and the check of a password.
#include <pwd.h>
#include <unistd.h>

#include <cstring>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/users.h"
#include "users/accounts.h"
#include "users/passwords.h"
#include "users/user_entries.h"

namespace filesharing {
namespace {

Result list_names(UserNameItem** head) {
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

Result fill_info(UserInfo& record) {
  Stream lists = open_stream(paths::kUserGroups, "r");
  if (!lists) {
    return FSH_CANNOT_OPEN;
  }
  const std::string value = read_everyone(lists.get());
  lists.reset();
  if (value.empty()) {
    return FSH_USER_UNKNOWN;
  }
  EveryoneReader users(value);
  while (users.next()) {
    if (users.user().name == record.name) {
      fill_from_everyone(record, users.user().number);
      return fill_from_account(record);
    }
  }
  return users.malformed() ? FSH_USER_UNKNOWN : fill_from_account(record);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetUserNameList(UserNameItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return list_names(head); });
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

unsigned GetUserInfo(UserInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  copy_field(record->description, "");
  copy_field(record->password, "");
  record->quota = 0;
  return guarded(FSH_NO_MEMORY, [&] { return fill_info(*record); });
}

int IsUserPassCorrect(const char* name, const char* password) {
  if (name == nullptr || password == nullptr) {
    return 0;
  }
  return guarded(0, [&] {
    const passwd* account = getpwnam(name);
    if (account == nullptr) {
      return 0;
    }
    const PasswordHash stored{.first = account->pw_passwd, .second = account->pw_dir};
    return password_matches(password, stored) ? 1 : 0;
  });
}
