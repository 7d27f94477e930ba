#include "users/account_line.h"

#include "conf/text.h"

namespace filesharing {

namespace {

constexpr std::int32_t kBuiltInUids[] = {500, 501, 502};
constexpr int kUsersGid = 501;

}  // namespace

std::optional<std::int32_t> parse_uid(std::string_view behind_name) {
  const Halves hash = split_at(behind_name, ':');
  if (!hash.found || hash.tail.find(':') == std::string_view::npos) {
    return std::nullopt;
  }
  return to_int(hash.tail);  // ends at the colon
}

bool is_listed_uid(std::int32_t uid) {
  for (const std::int32_t built_in : kBuiltInUids) {
    if (uid == built_in) {
      return true;
    }
  }
  return uid >= kFirstUserUid;
}

std::string account_line(std::string_view name, const PasswordHash& hash, std::int32_t uid,
                         std::string_view description) {
  return format("%s:%s:%d:%d:%s:%s:/dev/null\n", std::string(name).c_str(), hash.first.c_str(), uid,
                kUsersGid, std::string(description).c_str(), hash.second.c_str());
}

}  // namespace filesharing
