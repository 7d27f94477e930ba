#include "media/media_servers.h"

#include <tuple>

#include "platform/profile/profile.h"

namespace filesharing {

void switch_off(const char* key) {
  std::ignore = PRO_SetStr(kMediaSection, key, "no", paths::kSettings);
}

Result find_folder_or_switch_off(const char* path, const char* switch_key,
                                 FolderReference& reference, ShareInfo& share) {
  const ResolvedFolder resolved = resolve_folder(path);
  reference = resolved.reference;
  if (!resolved.there()) {
    if (resolved.state == ResolvedFolder::State::kNoFolder) {
      switch_off(switch_key);
    }
    return FSH_FAILED;
  }
  const Result gone = find_share(reference.share, share);
  if (gone != FSH_OK) {
    switch_off(switch_key);
  }
  return gone;
}

std::string server_name(const SettingsFile& settings, const char* key, const char* suffix) {
  std::string name = settings.section(kMediaSection).text(key, kServerNameLimit).value_or("");
  if (!name.empty()) {
    return name;
  }
  return settings.section("network").text("disk_server_name", 64).value_or("") + suffix;
}

}  // namespace filesharing
