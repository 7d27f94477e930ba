// What the name of a share tells about it.
#ifndef FILESHARING_SHARES_SHARE_NAMES_H
#define FILESHARING_SHARES_SHARE_NAMES_H

#include <string>
#include <string_view>

#include "conf/text.h"

namespace filesharing {

// The share of a USB disk: it comes and goes with the disk, so it is kept in registry and Samba
// files of its own.
inline bool is_removable_share(std::string_view name) {
  return name.starts_with("FLASH") || name.starts_with("HDD");
}

// Each volume's public share; on the volume itself it is "DISK".
inline constexpr char kPublicShare[] = "DISK";

inline std::string public_share_name(int volume) {
  constexpr int kRaidVolume = 5;
  return volume == kRaidVolume ? kPublicShare : format("%s %d", kPublicShare, volume);
}

}  // namespace filesharing

#endif
