// The UPnP AV server's settings in the settings file.
#include <tuple>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr int kShareLimit = 20;
constexpr int kVersionLimit = 11;
constexpr int kIntervalLimit = 16;
constexpr std::int32_t kDefaultCodePage = 437;

// The factory's settings know the version of the firmware that runs.
std::string firmware_version(const SettingsSection& network) {
  const SettingsFile factory(paths::kFactorySettings);
  const auto version =
      factory.opened() ? factory.section("network").text("version", kVersionLimit) : std::nullopt;
  return version ? *version : network.text("version", kVersionLimit).value_or("");
}

void read_slot(const SettingsSection& media, int slot, UPnPAVSettings& settings) {
  const auto key = [slot](const char* name) { return format("%s_%d", name, slot + 1); };
  settings.folder_used[slot] = media.number(key("upnp_av_folder").c_str()).value_or(0);
  settings.content_type[slot] = media.number(key("content_type").c_str()).value_or(0);
  copy_field(settings.folder_share[slot],
             media.text(key("upnp_av_share").c_str(), kShareLimit).value_or(""));
  copy_field(settings.folder_path[slot],
             media.text(key("upnp_av_path").c_str(), kReferenceLimit).value_or(""));
}

int read(UPnPAVSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  const SettingsSection media = file.section(kMediaSection);
  const SettingsSection network = file.section("network");
  settings.enabled = media.begins_with_yes("upnp_av", kSwitchLimit) ? 1 : 0;
  copy_field(settings.name, server_name(file, "upnp_name", "_Media"));
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    read_slot(media, slot, settings);
  }
  settings.content_scan = media.number("content_scan").value_or(-1);
  settings.code_page = network.number("code_page").value_or(kDefaultCodePage);
  settings.port = network.number("port").value_or(0);
  copy_field(settings.version, firmware_version(network));
  settings.scan_interval = to_unsigned(media.text("scan_interval", kIntervalLimit).value_or(""));
  return 0;
}

void add_slot(std::vector<Setting>& items, int slot, const UPnPAVSettings& settings) {
  const auto key = [slot](const char* name) { return format("%s_%d", name, slot + 1); };
  items.push_back({key("upnp_av_folder"), std::to_string(settings.folder_used[slot])});
  items.push_back({key("upnp_av_share"), std::string(field_text(settings.folder_share[slot]))});
  items.push_back({key("upnp_av_path"), std::string(field_text(settings.folder_path[slot]))});
  items.push_back({key("content_type"), std::to_string(settings.content_type[slot])});
}

int save(const UPnPAVSettings& settings) {
  const char* enabled = yes_or_no(settings.enabled != 0);
  // The same key is written again below, where the result counts.
  std::ignore = PRO_SetStr(kMediaSection, "upnp_av", enabled, paths::kSettings);
  std::vector<Setting> items{{"upnp_av", enabled},
                             {"upnp_name", std::string(field_text(settings.name))},
                             {"scan_interval", std::to_string(settings.scan_interval)},
                             {"content_scan", std::to_string(settings.content_scan)}};
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    add_slot(items, slot, settings);
  }
  return save_settings(kMediaSection, items);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadUPnPAVConf(UPnPAVSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return read(*settings); });
}

int SaveUPnPAVConf(const UPnPAVSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return save(*settings); });
}
