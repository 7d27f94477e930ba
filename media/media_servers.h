// What the media servers have in common: a switch in the settings file, a name that is made of the
// device's when nobody chose one, and the folders that they publish.
#ifndef FILESHARING_MEDIA_MEDIA_SERVERS_H
#define FILESHARING_MEDIA_MEDIA_SERVERS_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/result.h"
#include "conf/settings.h"
#include "filesharing/types.h"

namespace filesharing {

inline constexpr char kMediaSection[] = "media";

// How much of a server's name counts.
inline constexpr int kServerNameLimit = 32;

// A line of a server's configuration file is looked at in pieces of this length.
inline constexpr std::size_t kLongestLine = 1023;

// The name that somebody chose or, when it is empty, the device's with the suffix.
std::string server_name(const SettingsFile& file, std::string_view chosen, const char* suffix);

// What a reference, "/SHARE" or "/SHARE/SUB/FOLDER", leads to.
struct PublishedFolder {
  ShareInfo share;
  std::string folder;  // empty, or a slash and the folder within the share
};

// The folder that the share is on its volume.
std::string path_of(const ShareInfo& share);

// Nothing when the reference does not resolve.
std::optional<PublishedFolder> find_folder(std::string_view reference);

// The folder of a slot of the UPnP server, when the slot is in use.
std::optional<PublishedFolder> find_folder(const UPnPAVSettings& settings, int slot);

// The folder that a server cannot do without: FSH_OK, or FSH_FAILED when the reference does not
// resolve, or the code of GetShareInfo when the share went away just now. The server's switch
// becomes "no" in the settings file unless the share was unknown all along.
Result find_folder_or_switch_off(const char* reference, const char* switch_key,
                                 PublishedFolder& found);

}  // namespace filesharing

#endif
