#include "users/accounts.h"

#include "conf/text.h"

namespace filesharing {

Result fill_from_account(UserInfo& record) {
  const passwd* account = getpwnam(record.name);
  if (account == nullptr) {
    return FSH_USER_UNKNOWN;
  }
  copy_field(record.description, account->pw_gecos);
  record.uid = static_cast<std::int32_t>(account->pw_uid);
  return FSH_OK;
}

}  // namespace filesharing
