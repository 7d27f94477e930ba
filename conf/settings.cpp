#include "conf/settings.h"

#include <cstring>

#include "conf/text.h"
#include "platform/profile/profile.h"

namespace filesharing {

std::optional<std::string> SettingsSection::text(const char* key, int limit) const {
  std::string value(static_cast<std::size_t>(limit) + 1, '\0');
  if (PRO_GetStr(section_, key, value.data(), limit, stream_) != 0) {
    return std::nullopt;
  }
  value.resize(std::strlen(value.c_str()));
  return value;
}

std::optional<std::int32_t> SettingsSection::number(const char* key) const {
  int value = 0;
  if (PRO_GetInt(section_, key, &value, stream_) != 0) {
    return std::nullopt;
  }
  return value;
}

bool SettingsSection::is_yes(const char* key, int limit) const {
  return text(key, limit) == "yes";
}

bool SettingsSection::begins_with_yes(const char* key, int limit) const {
  return text(key, limit).value_or("").starts_with("yes");
}

int save_settings(const char* section, const std::vector<Setting>& settings) {
  std::vector<ProfileItem> items(settings.size());
  for (std::size_t i = 0; i < settings.size(); ++i) {
    copy_field(items[i].key, settings[i].key);
    items[i].value = settings[i].value.c_str();
  }
  return PRO_SetMultiItemStr(section, items.data(), static_cast<int>(items.size()),
                             paths::kSettings);
}

}  // namespace filesharing
