// Changing a user in every account file.
#include <pwd.h>
#include <unistd.h>

#include <optional>

#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/users.h"
#include "users/accounts.h"
#include "users/passwords.h"
#include "users/smb_account.h"
#include "users/user_entries.h"

namespace filesharing {
namespace {

constexpr std::size_t kPieceLength = 127;
constexpr std::uint64_t kMostAddedBytes = 160;  // a longer name, description and hash

// What is stored about the user, and what becomes of it.
struct Update {
  std::string old_name;
  std::int32_t old_uid;
  UserInfo user;
  PasswordHash hash;
  bool new_password;
  bool web_password_not_opened = false;

  bool renames() const { return old_name != user.name; }
};

std::optional<Update> plan_update(const char* old_name, const UserInfo& user) {
  const passwd* account = getpwnam(old_name);
  if (account == nullptr) {
    return std::nullopt;
  }
  Update update{.old_name = old_name,
                .old_uid = static_cast<std::int32_t>(account->pw_uid),
                .user = user,
                .hash = {.first = account->pw_passwd, .second = account->pw_dir},
                .new_password = user.password != std::string_view(FSH_PASSWORD_PLACEHOLDER)};
  if (update.new_password) {
    update.hash = hash_password(user.password);
  }
  return update;
}

std::string updated_line(const Update& update) {
  const std::int32_t uid = update.user.uid == 0 ? update.old_uid : update.user.uid;
  return account_line(update.old_name, update.hash, uid, update.user.description);
}

// The line keeps the old name: the renaming comes after the commands that need it.
Result replace_account(const Update& update, Transaction& transaction) {
  transaction.on_failure = OnFailure::kUnlockOnly;
  FileRewrite rewrite(paths::kPasswd);
  STEP(rewrite.open());
  transaction.on_failure = OnFailure::kRestore;
  const std::string prefix = update.old_name + ':';
  for (PieceReader piece(rewrite.source(), kPieceLength); piece.next();) {
    if (piece.starts_line() && piece.text().starts_with(prefix)) {
      rewrite.write(updated_line(update));
      piece.skip_rest_of_line();
    } else {
      rewrite.write(piece.text());
    }
  }
  return rewrite.commit({.through = Through::kUtilityLibrary,
                         .sync_after = Sync::kAlways,
                         .settle_seconds = 1,
                         .failure = FSH_USER_NOT_UPDATED});
}

Result change_smb_password(const Update& update) {
  if (!update.new_password) {
    return FSH_OK;
  }
  STEP(set_smb_password(update.old_name, update.user.password));
  end_smb_connections(update.old_uid);
  flush_smb_accounts();
  return FSH_OK;
}

Result rename_user(const Update& update) {
  if (!update.renames()) {
    return FSH_OK;
  }
  STEP(rename_smb_account(update.old_name, update.user.name));
  STEP(rename_in_groups(update.old_name, update.user.name));
  const unsigned status = RenameKey1(update.old_name.c_str(), update.user.name, paths::kPasswd);
  return status == FSH_OK ? FSH_OK : FSH_USER_NOT_UPDATED;
}

Result update_lists(const Update& update) {
  default_child_signal();
  return replace_in_lists(
      update.old_name, ListEntry{.name = update.user.name, .quota = update.user.quota},
      {.through = Through::kUtilityLibrary, .failure = FSH_USER_LIST_NOT_WRITTEN});
}

Result change_web_password(Update& update) {
  if (!update.new_password || update.user.name != std::string_view("admin")) {
    return FSH_OK;
  }
  const WebPassword outcome = write_web_password(update.user.name, update.hash);
  update.web_password_not_opened = outcome == WebPassword::kNotOpened;
  return outcome == WebPassword::kWritten ? FSH_OK : FSH_USER_NOT_UPDATED;
}

Result update_user(Update& update, Transaction& transaction) {
  STEP(replace_account(update, transaction));
  STEP(change_smb_password(update));
  STEP(rename_user(update));
  STEP(update_lists(update));
  STEP(change_web_password(update));
  return SetUserQuota(update.user.name, update.user.quota);
}

Result check_and_update(const char* old_name, const UserInfo& user) {
  std::optional<Update> update = plan_update(old_name, user);
  if (!update || (update->renames() && ItemExist(user.name, paths::kPasswd) != 0)) {
    return FSH_USER_NOT_UPDATED;
  }
  const Result result =
      transact({.mask = kUserFiles,
                .busy = FSH_UPDATE_USER_BUSY,
                .no_room = FSH_USER_NOT_UPDATED,
                .adds = kMostAddedBytes,
                .out_of_memory = FSH_USER_NOT_UPDATED},
               [&](Transaction& transaction) { return update_user(*update, transaction); });
  // Kept: a web password file that cannot be opened undoes everything and is not reported.
  return update->web_password_not_opened ? FSH_OK : result;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned UpdateUser(const char* old_name, const UserInfo* record) {
  default_child_signal();
  if (old_name == nullptr || record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  UserInfo user = *record;
  end_texts(user);
  return guarded(FSH_USER_NOT_UPDATED, [&] { return check_and_update(old_name, user); });
}
