// The photo album's settings in the settings file.
#include <tuple>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/album.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr char kSection[] = "photo_album";
constexpr int kTextLimit = 255;

int read(PhotoAlbumConf& settings) {
  settings.enabled = 0;
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  const SettingsSection album = file.section(kSection);
  settings.enabled = album.is_yes("album_enable", 5) ? 1 : 0;
  const auto path = album.text("album_path", kTextLimit);
  const auto music = album.text("album_back_music", kTextLimit);
  copy_field(settings.path, path.value_or(""));
  copy_field(settings.back_music, music.value_or(""));
  return path && music ? 0 : -1;
}

int save(const PhotoAlbumConf& settings) {
  const char* enabled = yes_or_no(settings.enabled != 0);
  // The same key is written again below, where the result counts.
  std::ignore = PRO_SetStr(kSection, "album_enable", enabled, paths::kSettings);
  return save_settings(kSection,
                       {{"album_enable", enabled},
                        {"album_path", std::string(field_text(settings.path))},
                        {"album_back_music", std::string(field_text(settings.back_music))}}) == 0
             ? 0
             : -1;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadPhotoAlbumConf(PhotoAlbumConf* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return read(*settings); });
}

int SavePhotoAlbumConf(const PhotoAlbumConf* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return save(*settings); });
}
