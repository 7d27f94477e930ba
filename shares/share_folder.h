// The folder of a share on its volume.
#ifndef FILESHARING_SHARES_SHARE_FOLDER_H
#define FILESHARING_SHARES_SHARE_FOLDER_H

#include <string>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// The folder as the daemons are told it: absolute, with a slash at its end.
std::string served_folder(const ShareInfo& share);

// Kept: what stands between the double quotes of the command that makes a folder.
enum class FolderQuotes {
  kWholePath,  // of a new share; the path has no slash doubled
  kPathAlone,  // of an updated one: what comes before the share's path is not quoted
};

// Makes the folder of the share with what leads to it, and opens it to all. What the commands say
// does not matter. FSH_SHARE_NOT_ADDED: the volume has no data folder, or no memory.
Result prepare_share_folder(const ShareInfo& share, FolderQuotes quotes);

}  // namespace filesharing

#endif
