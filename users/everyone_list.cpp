#include "users/everyone_list.h"

#include "conf/names.h"
#include "conf/text.h"
#include "conf/whole_value.h"
#include "filesharing/users.h"
#include "users/account_line.h"

namespace filesharing {

std::string read_everyone(std::FILE* stream) {
  const std::string value = read_whole_value("everyone", stream).value_or("");
  return without_leading_blanks(value).empty() ? "" : value;
}

bool EveryoneReader::next() {
  if (name_too_long_ || !members_.next()) {
    return false;
  }
  name_too_long_ = user().name.size() > kMostNameCharacters;
  return !name_too_long_;
}

void fill_from_list(UserInfo& record, std::string_view quota) {
  copy_field(record.password, FSH_PASSWORD_PLACEHOLDER);
  record.quota = to_unsigned(quota);
}

}  // namespace filesharing
