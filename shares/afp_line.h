// The line of a share in AppleVolumes.conf. Nothing here touches a file.
#ifndef FILESHARING_SHARES_AFP_LINE_H
#define FILESHARING_SHARES_AFP_LINE_H

#include <string>
#include <string_view>

#include "filesharing/types.h"

namespace filesharing {

// The line, with its line feed: folder, name, who may write (rwlist), who may enter (allow).
// read_only as in smb_section_body.
std::string afp_line(const ShareInfo& share, bool read_only);

// A whole file in which the lines of the share of that name are replaced by `line`. Without such a
// line it stands at the end. Every other byte stays.
std::string with_afp_line(std::string_view text, std::string_view name, std::string_view line);

// A whole file without the lines that begin with `key`.
std::string without_afp_lines(std::string_view text, std::string_view key);

}  // namespace filesharing

#endif
