// Deleting one user, or all of them, from every account file.
#include <pwd.h>

#include <array>
#include <optional>

#include "conf/c_list.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/users.h"
#include "users/smb_account.h"
#include "users/user_entries.h"

namespace filesharing {
namespace {

constexpr std::array<const char*, 3> kFilesWithUserLines{paths::kPasswd, paths::kWebPasswd,
                                                         paths::kSmbPasswd};

bool is_reserved(std::string_view name) {
  return name == "guest" || name == "admin";
}

void end_connections(const char* name) {
  if (const passwd* account = getpwnam(name)) {
    end_smb_connections(static_cast<std::int32_t>(account->pw_uid));
  }
}

Result delete_everywhere(const char* name) {
  end_connections(name);
  for (const char* path : kFilesWithUserLines) {
    STEP(DelKeyItem(name, path, ':'));
  }
  default_child_signal();
  STEP(remove_from_groups(name));
  return replace_in_lists(name, std::nullopt,
                          {.through = Through::kUtilityLibrary,
                           .sync_after = Sync::kAlways,
                           .failure = FSH_USER_NOT_DELETED});
}

Result delete_user(const char* name) {
  return delete_everywhere(name) == FSH_OK ? FSH_OK : FSH_USER_NOT_DELETED;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned DelUser(const char* name) {
  default_child_signal();
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  if (is_reserved(name)) {
    return FSH_USER_RESERVED;
  }
  return transact({.mask = kUserFiles,
                   .busy = FSH_USER_NOT_DELETED,
                   .no_room = FSH_USER_NOT_DELETED,
                   .out_of_memory = FSH_USER_NOT_DELETED},
                  [&] { return delete_user(name); });
}

unsigned DelAllUser(void) {
  UserNameItem* head = nullptr;
  if (GetUserNameList(&head) != FSH_OK) {
    return FSH_USER_NOT_DELETED;
  }
  for (const UserNameItem& user : Nodes(head)) {
    if (!is_reserved(user.name) && DelUser(user.name) != FSH_OK) {
      // Kept: the list is not freed; a page that gets here ends at once.
      return FSH_USER_NOT_DELETED;  // NOLINT(clang-analyzer-unix.Malloc)
    }
  }
  FreeUserNameList(head);
  return FSH_OK;
}
