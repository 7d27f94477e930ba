// What the media servers have in common: a switch in the settings file, and a name that is made of
// the device's when nobody chose one.
#ifndef FILESHARING_MEDIA_MEDIA_SERVERS_H
#define FILESHARING_MEDIA_MEDIA_SERVERS_H

#include <string>

#include "conf/result.h"
#include "conf/settings.h"
#include "filesharing/types.h"
#include "media/folder_reference.h"

namespace filesharing {

inline constexpr char kMediaSection[] = "media";

// How much of a value counts.
inline constexpr int kSwitchLimit = 16;
inline constexpr int kServerNameLimit = 32;
inline constexpr int kReferenceLimit = 256;

// A line of a server's configuration file is looked at in pieces of this length.
inline constexpr std::size_t kLongestLine = 1023;

// Switches a server off in the settings file. A failure has nobody to be told: the server is
// stopped already, and the page's answer is about its folder.
void switch_off(const char* key);

// The folder that a server publishes, and its share. FSH_FAILED: the reference does not resolve;
// the code of GetShareInfo: the share went away just now. The switch goes off when the folder or,
// just now, the share is gone; not for a share that was unknown all along.
Result find_folder_or_switch_off(const char* path, const char* switch_key,
                                 FolderReference& reference, ShareInfo& share);

// The name under the key, or the device's name with the suffix.
std::string server_name(const SettingsFile& settings, const char* key, const char* suffix);

}  // namespace filesharing

#endif
