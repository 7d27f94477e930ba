// Adding a user to every account file.
#include <pwd.h>
#include <unistd.h>

#include <unordered_set>

#include "conf/appended_file.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/users.h"
#include "users/accounts.h"
#include "users/passwords.h"
#include "users/smb_account.h"
#include "users/user_entries.h"

namespace filesharing {
namespace {

constexpr std::uint64_t kMostLineBytes = 160;  // of a user, in any of the files

std::int32_t first_free_uid() {
  std::unordered_set<uid_t> taken;
  for_each_account([&](const passwd& account) { taken.insert(account.pw_uid); });
  auto uid = static_cast<uid_t>(kFirstUserUid);
  // The look-up knows the accounts of a network directory, too.
  while (taken.contains(uid) || getpwuid(uid) != nullptr) {
    ++uid;
  }
  return static_cast<std::int32_t>(uid);
}

Result append_account(const UserInfo& user) {
  const std::string line =
      account_line(user.name, hash_password(user.password), first_free_uid(), user.description);
  const Appended outcome = append_to_file(paths::kPasswd, line);
  if (outcome != Appended::kNotOpened) {
    sync();
  }
  return outcome == Appended::kWritten ? FSH_OK : FSH_CANNOT_OPEN;
}

Result join_everyone(const UserInfo& user) {
  const char* names[] = {user.name};
  return AddUsersToSysGroup(kEveryone.data(), names, 1);
}

Result add_user(const UserInfo& user) {
  STEP(append_account(user));
  STEP(SetUserQuota(user.name, user.quota));
  STEP(add_smb_account(user.name, user.password));
  flush_smb_accounts();
  STEP(join_everyone(user));
  return add_to_everyone({.name = user.name, .quota = user.quota},
                         {.runs = 2, .forgives_echild = true, .failure = FSH_USER_NOT_ADDED});
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddUser(const UserInfo* record) {
  default_child_signal();
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  UserInfo user = *record;
  end_texts(user);
  if (ItemExist(user.name, paths::kPasswd) != 0) {
    return FSH_USER_EXISTS;
  }
  return transact({.mask = kNewUserFiles,
                   .busy = FSH_USER_NOT_ADDED,
                   .no_room = FSH_USER_NOT_ADDED,
                   .adds = kMostLineBytes,
                   .appends = FSH_FILE_PASSWORD | FSH_FILE_SMBPASS,
                   .out_of_memory = FSH_USER_NOT_ADDED},
                  [&] { return add_user(user); });
}
