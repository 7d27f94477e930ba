// The iTunes server's settings in the settings file.
#include <tuple>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

int read(ITunesSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  const SettingsSection media = file.section(kMediaSection);
  settings.enabled = media.begins_with_yes("itune", kSwitchLimit) ? 1 : 0;
  copy_field(settings.name, server_name(file, "itune_name", "_iTunes"));
  copy_field(settings.path, media.text("itune_path", kReferenceLimit).value_or(""));
  return 0;
}

int save(const ITunesSettings& settings) {
  const char* enabled = yes_or_no(settings.enabled != 0);
  // The same key is written again below, where the result counts.
  std::ignore = PRO_SetStr(kMediaSection, "itune", enabled, paths::kSettings);
  return save_settings(kMediaSection, {{"itune", enabled},
                                       {"itune_name", std::string(field_text(settings.name))},
                                       {"itune_path", std::string(field_text(settings.path))}});
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadiTuneConf(ITunesSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return read(*settings); });
}

int SaveiTuneConf(const ITunesSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return save(*settings); });
}
