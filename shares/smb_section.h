// The section of a share in the format of smb.conf(5). Nothing here touches a file.
#ifndef FILESHARING_SHARES_SMB_SECTION_H
#define FILESHARING_SHARES_SMB_SECTION_H

#include <string>
#include <string_view>

#include "filesharing/types.h"

namespace filesharing {

// The lines below the header. read_only leaves the groups with rights 7 out of those that may
// write; "administrators" may always.
std::string smb_section_body(const ShareInfo& share, bool read_only);

// A whole file in which each section of that name has the body, below the header that it had.
// Without such a section there is one at the end. Every other byte stays.
std::string with_smb_section(std::string_view text, std::string_view name, std::string_view body);

}  // namespace filesharing

#endif
