// Values of any length.
#ifndef FILESHARING_CONF_WHOLE_VALUE_H
#define FILESHARING_CONF_WHOLE_VALUE_H

#include <cstdio>
#include <optional>
#include <string>

namespace filesharing {

// The value of a key that stands before the first section header, as it stands there; nothing when
// there is no such key.
std::optional<std::string> read_whole_value(const char* key, std::FILE* stream);

}  // namespace filesharing

#endif
