// The photo album's settings in the settings file, and its folder as the web server sees it.
#include "album/album_settings.h"

#include <unistd.h>

#include <tuple>

#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/album.h"
#include "filesharing/shares.h"

namespace filesharing {

namespace {

constexpr char kSection[] = "photo_album";
constexpr char kSwitch[] = "album_enable";

std::vector<SettingField> fields_of(PhotoAlbumConf& settings) {
  return {optional({kSwitch, YesNo{settings.enabled}}),
          {"album_path", settings.path},
          {"album_back_music", settings.back_music}};
}

int read_album(PhotoAlbumConf& settings) {
  settings.enabled = 0;
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  settings = {};
  const SettingsSection album = file.section(kSection);
  const bool complete = read_fields(album, fields_of(settings));
  // Unlike other services, the album is on with a whole yes alone.
  settings.enabled = album.is_yes(kSwitch, 5) ? 1 : 0;
  return complete ? 0 : -1;
}

int save_album(PhotoAlbumConf settings) {
  const int saved = save_switch_first(kSection, kSwitch, settings_of(fields_of(settings)));
  return saved == 0 ? 0 : -1;
}

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
    std::ignore = SavePhotoAlbumConf(&settings);  // the function has no result
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
  const std::string target = paths::volume_data(share->volume) + share->path + path->folder;
  std::ignore = symlink(target.c_str(), paths::kPhotoAlbum);  // without the link the album is off
}

}  // namespace

std::optional<AlbumPath> parse_album_path(const PhotoAlbumConf& settings) {
  const auto start = split_at(field_text(settings.path), '/');
  if (!start.found) {
    return std::nullopt;
  }
  const auto share = split_at(start.tail, '/');
  return AlbumPath{.share = std::string(share.head), .folder = std::string(share.tail)};
}

std::optional<ShareInfo> find_album_share(const AlbumPath& path) {
  ShareInfo share{};
  if (path.share.size() >= sizeof share.name) {
    return std::nullopt;  // cut to the field it could name another share
  }
  copy_field(share.name, path.share);
  if (GetShareInfo(&share) != FSH_OK) {
    return std::nullopt;
  }
  return share;
}

}  // namespace filesharing

using namespace filesharing;

int ReadPhotoAlbumConf(PhotoAlbumConf* settings) {
  return with_record(settings, read_album);
}

int SavePhotoAlbumConf(const PhotoAlbumConf* settings) {
  return with_record(settings, save_album);
}

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
