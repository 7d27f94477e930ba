// The web password file: one line for the administrator of the management pages.
#ifndef FILESHARING_USERS_WEB_PASSWORD_H
#define FILESHARING_USERS_WEB_PASSWORD_H

#include <string>

#include "users/password_hash.h"

namespace filesharing {

// The line, with both hashes when there is a second.
std::string web_password_line(const std::string& name, const PasswordHash& hash);

enum class WebPassword { kWritten, kNotOpened, kNotWritten };

// Writes the file anew, for root alone.
WebPassword write_web_password(const std::string& name, const PasswordHash& hash);

}  // namespace filesharing

#endif
