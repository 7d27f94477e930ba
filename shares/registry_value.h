// What stands behind the name of a share in the registry: "suffixed:volume:comment:path:groups".
#ifndef FILESHARING_SHARES_REGISTRY_VALUE_H
#define FILESHARING_SHARES_REGISTRY_VALUE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "filesharing/types.h"

namespace filesharing {

struct RegistryValue {
  std::int32_t suffixed;
  std::int32_t volume;
  std::string_view comment;
  std::string_view path;
  std::string_view access_list;  // empty without one
};

// Nothing for a value with less than four fields: every field but the last is ended by a ":" that
// is not the last character of its line.
std::optional<RegistryValue> parse_registry_value(std::string_view value);

// Fills the first four fields of the record.
void fill_share(const RegistryValue& value, ShareInfo& share);

// A value under which a share is registered: the path always ends in "/". `access_list` comes with
// the ":" before it.
std::string registry_value(const ShareInfo& share, std::string_view access_list);

// The value as it stands in the volume's own list.
std::string volume_value(std::string_view registry_value);

// The name of the share as the volume knows it.
std::string volume_share_name(const ShareInfo& share);

}  // namespace filesharing

#endif
