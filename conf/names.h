// What names and paths tell about users, groups and shares.
#ifndef FILESHARING_CONF_NAMES_H
#define FILESHARING_CONF_NAMES_H

#include <string>
#include <string_view>

#include "conf/text.h"

namespace filesharing {

// A longer name of a user, group or share is not listed, though its file holds it.
inline constexpr std::size_t kMostNameCharacters = 20;

// The groups that may use and administer every share, and the group of all users.
inline constexpr std::string_view kAdministrators = "administrators";
inline constexpr std::string_view kEveryone = "everyone";

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
