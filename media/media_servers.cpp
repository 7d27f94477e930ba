#include "media/media_servers.h"

#include "platform/profile/profile.h"

namespace filesharing {

void switch_off(const char* key) {
  static_cast<void>(PRO_SetStr(kMediaSection, key, "no", paths::kSettings));
}

std::string server_name(const SettingsFile& settings, const char* key, const char* suffix) {
  const std::string name = settings.section(kMediaSection).text(key, kServerNameLimit).value_or("");
  if (!name.empty()) {
    return name;
  }
  return settings.section("network").text("disk_server_name", 64).value_or("") + suffix;
}

}  // namespace filesharing
