// Passwords: their hashes in the account files, and the web password file.
#ifndef FILESHARING_USERS_PASSWORDS_H
#define FILESHARING_USERS_PASSWORDS_H

#include <string>
#include <string_view>

namespace filesharing {

// A password in two parts, since traditional crypt(3) sees 8 characters: characters 1 to 8, and 9
// to 15. The second is empty for a password of 8 characters or fewer.
struct PasswordHash {
  std::string first;
  std::string second;
};

// Hashes with the fixed salt that the device's web server and its tools expect.
PasswordHash hash_password(std::string_view password);

// Whether the password gives the stored hashes, with the salt of the first. stored.second is field
// 6 of the account line: empty, or a real home directory below /home/user, when it holds no hash.
bool password_matches(std::string_view password, const PasswordHash& stored);

enum class WebPassword { kWritten, kNotOpened, kNotWritten };

// Writes the web password file anew, for root alone: one line for the administrator of the
// management pages, with both hashes when there is a second.
WebPassword write_web_password(const std::string& name, const PasswordHash& hash);

}  // namespace filesharing

#endif
