// What removing a group from a share makes of the daemons' files: only the lists of groups change.
// Nothing here touches a file.
#ifndef FILESHARING_SHARES_ACCESS_EDITS_H
#define FILESHARING_SHARES_ACCESS_EDITS_H

#include <string>
#include <string_view>

#include "filesharing/types.h"

namespace filesharing {

// The groups that a share keeps: those of the list but one.
struct RemainingGroups {
  const ShareGroup* groups;
  std::string_view removed;
};

// smb.conf with the lists in the sections of that share replaced.
std::string with_smb_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining);

// AppleVolumes.conf with the lists in the lines of that share replaced.
std::string with_afp_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining);

}  // namespace filesharing

#endif
