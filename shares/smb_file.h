// The shares in Samba's files, smb.conf(5): a share is a section, with its name as the header. The
// functions here make texts of texts; none touches a file.
#ifndef FILESHARING_SHARES_SMB_FILE_H
#define FILESHARING_SHARES_SMB_FILE_H

#include <string>
#include <string_view>

#include "filesharing/types.h"
#include "shares/access_list.h"
#include "shares/removable_shares.h"

namespace filesharing {

// The lines below the header. read_only leaves the groups with rights 7 out of those that may
// write; "administrators" may always.
std::string smb_section_body(const ShareInfo& share, bool read_only);

// A whole file in which each section of that name has the body, below the header that it had.
// Without such a section there is one at the end. Every other byte stays.
std::string with_smb_section(std::string_view text, std::string_view name, std::string_view body);

// A whole file with the lists of groups in the sections of that share replaced.
std::string with_smb_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining);

// The section of a USB disk's partition in user_smb.conf: all users may read, and write where the
// mount allows it.
std::string removable_smb_section(const RemovableMount& mount);

}  // namespace filesharing

#endif
