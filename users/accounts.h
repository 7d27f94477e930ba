// The accounts in /etc/passwd, passwd(5): lines as text, and what the system knows.
#ifndef FILESHARING_USERS_ACCOUNTS_H
#define FILESHARING_USERS_ACCOUNTS_H

#include <pwd.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "conf/result.h"
#include "filesharing/types.h"
#include "users/passwords.h"

namespace filesharing {

constexpr std::int32_t kFirstUserUid = 2000;

// The id in what follows the name and its colon; nothing when a colon is missing there: the one
// behind the hash, or the one behind the id.
std::optional<std::int32_t> parse_uid(std::string_view behind_name);

// Whether an account of this id is a user of the server, and not one of the system's own.
bool is_listed_uid(std::int32_t uid);

// The line of a user as this library writes it, with its line feed.
std::string account_line(const std::string& name, const PasswordHash& hash, std::int32_t uid,
                         const std::string& description);

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
