// The thumbnails and descriptions of pictures that are gone.
#include <unistd.h>

#include <string>
#include <string_view>

#include "conf/folder.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

// The longer prefix first: it begins with the shorter.
constexpr std::string_view kPrefixes[] = {"Thumbnail_MED_", "Thumbnail_", "Description_"};

// The picture that a file of the thumbnail folder belongs to; empty for any other file.
std::string_view picture_of(std::string_view name) {
  for (const std::string_view prefix : kPrefixes) {
    if (name.starts_with(prefix)) {
      return name.substr(prefix.size());
    }
  }
  return {};
}

bool is_there(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

int remove_orphans(const std::string& folder) {
  const std::string thumbnails = folder + "/.Thumb_DB";
  const Folder entries = open_folder(thumbnails);
  if (!entries) {
    return 0;
  }
  while (const dirent* entry = readdir(entries.get())) {
    const std::string name = entry->d_name;
    const std::string_view picture = picture_of(name);
    if (!picture.empty() && !is_there(folder + '/' + std::string(picture))) {
      unlink(format("%s/%s", thumbnails.c_str(), name.c_str()).c_str());
    }
  }
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int CheckAlbumThumbFiles(const char* folder) {
  return folder == nullptr ? 0 : guarded(0, [&] { return remove_orphans(folder); });
}
