#include "users/password_hash.h"

#include <crypt.h>

namespace filesharing {

namespace {

constexpr char kSalt[] = "Jq";
constexpr std::size_t kHalf = 8;
constexpr std::size_t kMostCharacters = 15;

// Empty when crypt(3) can not use the salt. The library's static buffer is copied at once.
std::string crypt_half(std::string_view half, const std::string& salt) {
  const char* hash = crypt(std::string(half).c_str(), salt.c_str());
  return hash == nullptr || *hash == '*' ? std::string() : std::string(hash);
}

PasswordHash hash_with(std::string_view password, const std::string& salt) {
  password = password.substr(0, kMostCharacters);
  PasswordHash hash{.first = crypt_half(password.substr(0, kHalf), salt), .second = {}};
  if (password.size() > kHalf) {
    hash.second = crypt_half(password.substr(kHalf), salt);
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

}  // namespace filesharing
