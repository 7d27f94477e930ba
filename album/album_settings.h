// Where the photo album lies: a share, and a folder in it.
#ifndef FILESHARING_ALBUM_ALBUM_SETTINGS_H
#define FILESHARING_ALBUM_ALBUM_SETTINGS_H

#include <optional>
#include <string>

#include "filesharing/types.h"

namespace filesharing {

struct AlbumPath {
  std::string share;
  std::string folder;  // what follows the share's name and a slash; may be empty
};

// The path of the settings; nothing when it has no slash.
std::optional<AlbumPath> parse_album_path(const PhotoAlbumConf& settings);

// The record of the album's share; nothing when there is no such share.
std::optional<ShareInfo> find_album_share(const AlbumPath& path);

}  // namespace filesharing

#endif
