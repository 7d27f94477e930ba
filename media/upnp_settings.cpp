// The UPnP AV server's settings in the settings file, and those that it left the factory with.
#include <tuple>

#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"

namespace filesharing {
namespace {

// ---- Settings

constexpr int kVersionLimit = 11;
constexpr int kIntervalLimit = 16;
constexpr std::int32_t kDefaultCodePage = 437;

std::vector<SettingField> fields_of(UPnPAVSettings& settings) {
  std::vector<SettingField> fields{{"upnp_av", YesNo{settings.enabled}},
                                   {"upnp_name", settings.name, kServerNameLimit},
                                   {"content_scan", settings.content_scan}};
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    const std::string suffix = '_' + std::to_string(slot + 1);
    fields.emplace_back("upnp_av_folder" + suffix, settings.folder_used[slot]);
    fields.emplace_back("upnp_av_share" + suffix, settings.folder_share[slot]);
    fields.emplace_back("upnp_av_path" + suffix, settings.folder_path[slot]);
    fields.emplace_back("content_type" + suffix, settings.content_type[slot]);
  }
  return fields;
}

// The factory's settings know the version of the firmware that runs.
std::string firmware_version(const SettingsSection& network) {
  const SettingsFile factory(paths::kFactorySettings);
  const auto version =
      factory.opened() ? factory.section("network").text("version", kVersionLimit) : std::nullopt;
  return version ? *version : network.text("version", kVersionLimit).value_or("");
}

int read_upnp(UPnPAVSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  settings.content_scan = -1;
  const SettingsSection media = file.section(kMediaSection);
  const SettingsSection network = file.section("network");
  std::ignore = read_fields(media, fields_of(settings));
  copy_field(settings.name, server_name(file, settings.name, "_Media"));
  settings.code_page = network.number("code_page").value_or(kDefaultCodePage);
  settings.port = network.number("port").value_or(0);
  copy_field(settings.version, firmware_version(network));
  settings.scan_interval = to_unsigned(media.text("scan_interval", kIntervalLimit).value_or(""));
  return 0;
}

int save_upnp(UPnPAVSettings settings) {
  std::vector<Setting> items = settings_of(fields_of(settings));
  items.insert(items.begin() + 2, {"scan_interval", std::to_string(settings.scan_interval)});
  return save_switch_first(kMediaSection, "upnp_av", items);
}

// ---- The settings that the server left the factory with

constexpr int kFactoryValueLimit = 311;

constexpr const char* kFactoryKeys[] = {
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
  for (const char* key : kFactoryKeys) {
    items.push_back(
        {key, factory.section(kMediaSection).text(key, kFactoryValueLimit).value_or("")});
  }
  std::ignore = save_settings(kMediaSection, items);  // the function has no result
  std::ignore = run_command("/etc/rc.d/twonkymedia.sh stop >/dev/null 2>&1");
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadUPnPAVConf(UPnPAVSettings* settings) {
  return with_record(settings, read_upnp);
}

int SaveUPnPAVConf(const UPnPAVSettings* settings) {
  return with_record(settings, save_upnp);
}

void ResetUPnPAV2Def(void) {
  guarded(0, [] {
    restore_factory_settings();
    return 0;
  });
}
