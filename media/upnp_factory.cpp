// Back to the UPnP AV settings that the server left the factory with.
#include <tuple>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/shell.h"
#include "filesharing/media.h"
#include "media/media_servers.h"

namespace filesharing {
namespace {

constexpr int kValueLimit = 311;

constexpr const char* kKeys[] = {
    "upnp_av",          "upnp_name",        "scan_interval",    "upnp_av_folder_1",
    "upnp_av_share_1",  "upnp_av_path_1",   "upnp_av_folder_2", "upnp_av_share_2",
    "upnp_av_path_2",   "upnp_av_folder_3", "upnp_av_share_3",  "upnp_av_path_3",
    "upnp_av_folder_4", "upnp_av_share_4",  "upnp_av_path_4",
};

void restore_factory_settings() {
  const SettingsFile factory(paths::kFactorySettings);
  if (!factory.opened()) {
    return;
  }
  std::vector<Setting> items;
  for (const char* key : kKeys) {
    items.push_back({key, factory.section(kMediaSection).text(key, kValueLimit).value_or("")});
  }
  std::ignore = save_settings(kMediaSection, items);  // the page has nobody to tell
  std::ignore = run_command("/etc/rc.d/twonkymedia.sh stop >/dev/null 2>&1");
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

void ResetUPnPAV2Def(void) {
  guarded(0, [] {
    restore_factory_settings();
    return 0;
  });
}
