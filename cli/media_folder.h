// Arguments that the media servers share: their names and the folders that they publish.
#ifndef FILESHARE_MEDIA_FOLDER_H
#define FILESHARE_MEDIA_FOLDER_H

#include <string>

#include "cli/names.h"

namespace fileshare {

// Empty for the name of the device.
inline constexpr TextRule kMediaServerName{"a server name", 32, "", false};

// The check of an option for a reference such as /Music/Pop, of 256 bytes at most; empty for none.
std::string reference_fault(const std::string& reference);

// Whether the reference is empty or leads to a folder that is there; else says why not, as in:
//   fileshare: can not publish "/Music/Pop": there is no such folder
bool can_publish(const std::string& reference);

// The name of the share in a reference that can be published; empty for an empty one.
std::string share_of(const std::string& reference);

}  // namespace fileshare

#endif
