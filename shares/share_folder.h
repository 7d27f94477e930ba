// The folder of a share on its volume.
#ifndef FILESHARING_SHARES_SHARE_FOLDER_H
#define FILESHARING_SHARES_SHARE_FOLDER_H

#include <string>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// The folder as the daemons are told it: absolute, with a slash at its end.
std::string served_folder(const ShareInfo& share);

// Runs the command that makes the folder; the path is ready for between double quotes.
using MakeFolder = void (*)(int volume, const std::string& escaped_path);

// Makes the folder of the share with what leads to it, and opens it to all. What the commands say
// does not matter. FSH_SHARE_NOT_ADDED: the volume has no data folder, or no memory.
Result prepare_share_folder(const ShareInfo& share, MakeFolder make_folder);

}  // namespace filesharing

#endif
