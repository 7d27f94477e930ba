// The album's folder as the web server sees it, and the album of a share that goes away.
#include <tuple>

#include <unistd.h>

#include "album/album_path.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

void switch_off_without_share(int volume) {
  PhotoAlbumConf settings{};
  if (ReadPhotoAlbumConf(&settings) != 0 || settings.enabled == 0) {
    return;
  }
  const auto path = parse_album_path(settings);
  if (!path) {
    return;
  }
  const auto share = find_album_share(*path);
  if (!share || share->volume == volume) {
    settings.enabled = 0;
    std::ignore = SavePhotoAlbumConf(&settings);  // the page has nobody to tell
  }
}

void link_album(const PhotoAlbumConf& settings) {
  unlink(paths::kPhotoAlbum);
  const auto path = parse_album_path(settings);
  const auto share = path ? find_album_share(*path) : std::nullopt;
  if (!share || settings.enabled == 0) {
    return;
  }
  // Kept: no slash is put between the share's path and the folder; the registry's paths end in one.
  const std::string target =
      format("/harddisk/volume_%d/data%s%s", share->volume, share->path, path->folder.c_str());
  std::ignore = symlink(target.c_str(), paths::kPhotoAlbum);  // unlinked, the album is off
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int CheckPhotoAlbum(int volume) {
  return guarded(0, [&] {
    switch_off_without_share(volume);
    return 0;
  });
}

int ResetPhotoAlbum(const PhotoAlbumConf* settings) {
  if (settings == nullptr) {
    return 0;
  }
  return guarded(0, [&] {
    link_album(*settings);
    return 0;
  });
}
