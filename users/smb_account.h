// A user's account with Samba: the commands of its tool, and its password file smbpasswd(5).
#ifndef FILESHARING_USERS_SMB_ACCOUNT_H
#define FILESHARING_USERS_SMB_ACCOUNT_H

#include <cstdint>
#include <string>

#include "conf/result.h"

namespace filesharing {

// Adds an account, or sets the password of one; an empty password makes it one without. FSH_OK, or
// the status of the tool as system(3) gives it.
Result add_smb_account(const std::string& name, const std::string& password);
Result set_smb_password(const std::string& name, const std::string& password);

// Pushes what the tool has written to the disk.
void flush_smb_accounts();

// Ends the connections of a user. It does not matter whether that works.
void end_smb_connections(std::int32_t uid);

// Renames the first account of that name. FSH_USER_NOT_UPDATED when there is none or the file could
// not be written, FSH_CANNOT_OPEN, FSH_NO_TEMPORARY.
Result rename_smb_account(const std::string& old_name, const std::string& new_name);

}  // namespace filesharing

#endif
