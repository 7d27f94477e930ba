#include "conf/whole_value.h"

#include <cstring>

#include "filesharing/conf.h"
#include "platform/profile/profile.h"

namespace filesharing {

std::optional<std::string> read_whole_value(const char* key, std::FILE* stream) {
  const int length = PRO_GetStrLen(nullptr, key, stream);
  if (length < 0) {
    return std::nullopt;
  }
  std::string value(static_cast<std::size_t>(length) + 1, '\0');
  if (FSH_GetStr(nullptr, key, value.data(), length, stream) != FSH_OK) {
    return std::nullopt;
  }
  value.resize(std::strlen(value.c_str()));
  return value;
}

}  // namespace filesharing
