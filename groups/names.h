// The names of users or groups that a caller lists.
#ifndef FILESHARING_GROUPS_NAMES_H
#define FILESHARING_GROUPS_NAMES_H

#include <algorithm>
#include <string_view>
#include <vector>

namespace filesharing {

using Names = std::vector<std::string_view>;

inline bool holds(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// False when the list or one of its names is missing, or when it is empty.
inline bool is_list(const char* const* names, int count) {
  return names != nullptr && count > 0 &&
         std::none_of(names, names + count, [](const char* name) { return name == nullptr; });
}

}  // namespace filesharing

#endif
