#include "users/accounts.h"

#include "conf/text.h"

namespace filesharing {

std::optional<std::int32_t> parse_uid(std::string_view behind_name) {
  const Halves hash = split_at(behind_name, ':');
  if (!hash.found || hash.tail.find(':') == std::string_view::npos) {
    return std::nullopt;
  }
  return to_int(hash.tail);  // ends at the colon
}

bool is_listed_uid(std::int32_t uid) {
  constexpr std::int32_t kFirstBuiltIn = 500;
  constexpr std::int32_t kLastBuiltIn = 502;
  return uid >= kFirstUserUid || (uid >= kFirstBuiltIn && uid <= kLastBuiltIn);
}

std::string account_line(const std::string& name, const PasswordHash& hash, std::int32_t uid,
                         const std::string& description) {
  constexpr int kUsersGid = 501;
  return format("%s:%s:%d:%d:%s:%s:/dev/null\n", name.c_str(), hash.first.c_str(), uid, kUsersGid,
                description.c_str(), hash.second.c_str());
}

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
