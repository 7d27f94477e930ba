// The shares in AppleVolumes.conf, the Apple file service's list of folders: a share is a line. The
// functions here make texts of texts; none touches a file.
#ifndef FILESHARING_SHARES_AFP_FILE_H
#define FILESHARING_SHARES_AFP_FILE_H

#include <string>
#include <string_view>

#include "filesharing/types.h"
#include "shares/access_list.h"
#include "shares/removable_shares.h"

namespace filesharing {

// The line, with its line feed: folder, name, who may write (rwlist), who may enter (allow).
// read_only leaves the groups with rights 7 out of those that may write.
std::string afp_line(const ShareInfo& share, bool read_only);

// A whole file in which the lines of the share of that name are replaced by `line`. Without such a
// line it stands at the end. Every other byte stays.
std::string with_afp_line(std::string_view text, std::string_view name, std::string_view line);

// A whole file with the lists of groups in the lines of that share replaced.
std::string with_afp_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining);

// A whole file without the lines that begin with `key`.
std::string without_afp_lines(std::string_view text, std::string_view key);

// The line of a USB disk's partition.
std::string removable_afp_line(const RemovableMount& mount);

}  // namespace filesharing

#endif
