// A line of /etc/passwd, passwd(5), as text.
#ifndef FILESHARING_USERS_ACCOUNT_LINE_H
#define FILESHARING_USERS_ACCOUNT_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "users/password_hash.h"

namespace filesharing {

constexpr std::size_t kMostUserNameCharacters = 20;
constexpr std::int32_t kFirstUserUid = 2000;

struct AccountId {
  std::string_view name;
  std::int32_t uid;
};

// The name and id of a line; nothing when it lacks one of its first three colons.
std::optional<AccountId> parse_account_id(std::string_view line);

// Whether an account of this id is a user of the server, and not one of the system's own.
bool is_listed_uid(std::int32_t uid);

// The line of a user as this library writes it, with its line feed.
std::string account_line(std::string_view name, const PasswordHash& hash, std::int32_t uid,
                         std::string_view description);

}  // namespace filesharing

#endif
