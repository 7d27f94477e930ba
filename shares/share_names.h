// What the name of a share tells about it.
#ifndef FILESHARING_SHARES_SHARE_NAMES_H
#define FILESHARING_SHARES_SHARE_NAMES_H

#include <string_view>

namespace filesharing {

// The share of a USB disk: it comes and goes with the disk, so it is kept in registry and Samba
// files of its own.
inline bool is_removable_share(std::string_view name) {
  return name.starts_with("FLASH") || name.starts_with("HDD");
}

}  // namespace filesharing

#endif
