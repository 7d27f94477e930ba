// The accounts that the system knows: looked up by name, or all of them in one pass.
#ifndef FILESHARING_USERS_ACCOUNTS_H
#define FILESHARING_USERS_ACCOUNTS_H

#include <pwd.h>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// Fills description and uid of the account of the record's name. FSH_OK or FSH_USER_UNKNOWN.
Result fill_from_account(UserInfo& record);

// Calls visit(const passwd&) for each account, in the order in which getpwnam(3) and getpwuid(3)
// look through them. Accounts of a network directory that does not list them are left out.
template <class Visit>
void for_each_account(Visit visit) {
  struct Pass {
    Pass() { setpwent(); }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;
    ~Pass() { endpwent(); }
  };
  const Pass pass;
  while (const passwd* account = getpwent()) {
    // Such a line refers to a network directory: no look-up finds it.
    if (*account->pw_name != '+' && *account->pw_name != '-') {
      visit(*account);
    }
  }
}

}  // namespace filesharing

#endif
