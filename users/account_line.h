// A line of /etc/passwd, passwd(5), as text.
#ifndef FILESHARING_USERS_ACCOUNT_LINE_H
#define FILESHARING_USERS_ACCOUNT_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "users/password_hash.h"

namespace filesharing {

constexpr std::int32_t kFirstUserUid = 2000;

// The id in what stands behind the name and its colon; nothing when a colon is missing there: the
// one behind the hash, or the one behind the id.
std::optional<std::int32_t> parse_uid(std::string_view behind_name);

// Whether an account of this id is a user of the server, and not one of the system's own.
bool is_listed_uid(std::int32_t uid);

// The line of a user as this library writes it, with its line feed.
std::string account_line(std::string_view name, const PasswordHash& hash, std::int32_t uid,
                         std::string_view description);

}  // namespace filesharing

#endif
