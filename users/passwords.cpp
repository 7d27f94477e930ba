#include "users/passwords.h"

#include <crypt.h>
#include <sys/stat.h>

#include "conf/file_copy.h"
#include "conf/paths.h"
#include "conf/stream.h"

namespace filesharing {
namespace {

constexpr char kSalt[] = "Jq";
constexpr std::size_t kHashedCharacters = 8;  // by one run of crypt(3)
constexpr std::size_t kMostCharacters = 15;
constexpr mode_t kOwnerOnly = 0600;

// Empty when crypt(3) cannot use the salt. The library's static buffer is copied at once.
std::string crypt_part(std::string_view part, const std::string& salt) {
  const char* hash = crypt(std::string(part).c_str(), salt.c_str());
  return hash == nullptr || *hash == '*' ? std::string() : std::string(hash);
}

PasswordHash hash_with(std::string_view password, const std::string& salt) {
  password = password.substr(0, kMostCharacters);
  PasswordHash hash{.first = crypt_part(password.substr(0, kHashedCharacters), salt), .second = {}};
  if (password.size() > kHashedCharacters) {
    hash.second = crypt_part(password.substr(kHashedCharacters), salt);
  }
  return hash;
}

bool holds_second_hash(std::string_view field) {
  return !field.empty() && !field.starts_with("/home/user");
}

}  // namespace

PasswordHash hash_password(std::string_view password) {
  return hash_with(password, kSalt);
}

bool password_matches(std::string_view password, const PasswordHash& stored) {
  const PasswordHash given = hash_with(password, stored.first.substr(0, 2));
  if (given.first.empty() || given.first != stored.first) {
    return false;
  }
  return !holds_second_hash(stored.second) || given.second == stored.second;
}

WebPassword write_web_password(const std::string& name, const PasswordHash& hash) {
  const OldContent old(paths::kWebPasswd);
  Stream stream = open_stream(paths::kWebPasswd, "w");
  if (!stream) {
    return WebPassword::kNotOpened;
  }
  const bool protected_first = fchmod(fileno(stream.get()), kOwnerOnly) == 0;
  const std::string second = hash.second.empty() ? "" : ',' + hash.second;
  write_text(stream.get(), name + ':' + hash.first + second + '\n');
  if (!close_written(std::move(stream)) || !protected_first) {
    old.put_back();
    return WebPassword::kNotWritten;
  }
  return WebPassword::kWritten;
}

}  // namespace filesharing
