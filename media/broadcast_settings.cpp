// The music broadcast's settings in the settings file.
#include <tuple>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr std::int32_t kDefaultPort = 1234;
constexpr int kPlayMethodLimit = 12;

int read(BroadcastSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  const SettingsSection media = file.section(kMediaSection);
  const std::int32_t port = media.number("broad_port").value_or(0);
  settings.enabled = media.begins_with_yes("music_broad", kSwitchLimit) ? 1 : 0;
  copy_field(settings.name, server_name(file, "broad_name", "_MP3"));
  settings.port = port == 0 ? kDefaultPort : port;
  copy_field(settings.path, media.text("broad_path", kReferenceLimit).value_or(""));
  copy_field(settings.play_method, media.text("play_method", kPlayMethodLimit).value_or(""));
  return 0;
}

int save(const BroadcastSettings& settings) {
  const char* enabled = yes_or_no(settings.enabled != 0);
  // Kept: the switch is also written as "broad", so that this key appears though nothing reads it.
  std::ignore = PRO_SetStr(kMediaSection, "broad", enabled, paths::kSettings);
  return save_settings(kMediaSection,
                       {{"music_broad", enabled},
                        {"broad_name", std::string(field_text(settings.name))},
                        {"broad_path", std::string(field_text(settings.path))},
                        {"broad_port", std::to_string(settings.port)},
                        {"play_method", std::string(field_text(settings.play_method))}});
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadBroadConf(BroadcastSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return read(*settings); });
}

int SaveBroadConf(const BroadcastSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return save(*settings); });
}
