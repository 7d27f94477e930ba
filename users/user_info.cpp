// Looking up one user: the record, and the check of a password.
#include <pwd.h>

#include "conf/paths.h"
#include "conf/records.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/users.h"
#include "users/accounts.h"
#include "users/everyone_list.h"
#include "users/password_hash.h"

namespace filesharing {
namespace {

Result fill_user_info(UserInfo& record) {
  Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  const std::string value = read_everyone(stream.get());
  stream.reset();
  if (value.empty()) {
    return FSH_USER_UNKNOWN;
  }
  EveryoneReader users(value);
  while (users.next()) {
    if (users.user().name == record.name) {
      fill_from_list(record, users.user().number);
      return fill_from_account(record);
    }
  }
  return users.malformed() ? FSH_USER_UNKNOWN : fill_from_account(record);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetUserInfo(UserInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  copy_field(record->description, "");
  copy_field(record->password, "");
  record->quota = 0;
  return guarded(FSH_NO_MEMORY, [&] { return fill_user_info(*record); });
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
