#include "conf/settings.h"

#include <algorithm>
#include <cstring>

#include "conf/text.h"
#include "filesharing/conf.h"
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

bool SettingField::read(const SettingsSection& section) const {
  if (number_ != nullptr) {
    const auto value = section.number(key_.c_str());
    *number_ = value.value_or(*number_);
    return value.has_value();
  }
  const auto value = section.text(key_.c_str(), limit_);
  if (value && answer_ != nullptr) {
    *answer_ = value->starts_with("yes") ? 1 : 0;
  } else if (value) {
    std::ranges::fill(text_, '\0');
    std::ranges::copy(*value, text_.begin());
  }
  return value.has_value();
}

Setting SettingField::setting() const {
  if (number_ != nullptr) {
    return {key_, std::to_string(*number_)};
  }
  if (answer_ != nullptr) {
    return {key_, yes_or_no(*answer_ != 0)};
  }
  return {key_, std::string(text_.begin(), std::ranges::find(text_, '\0'))};
}

bool read_fields(const SettingsSection& section, const std::vector<SettingField>& fields) {
  bool complete = true;
  for (const SettingField& field : fields) {
    complete = (field.read(section) || field.optional) && complete;
  }
  return complete;
}

std::vector<Setting> settings_of(const std::vector<SettingField>& fields) {
  std::vector<Setting> settings;
  settings.reserve(fields.size());
  for (const SettingField& field : fields) {
    settings.push_back(field.setting());
  }
  return settings;
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

int save_switch_first(const char* section, const char* switch_key,
                      const std::vector<Setting>& settings) {
  std::ignore = PRO_SetStr(section, switch_key, settings.front().value.c_str(), paths::kSettings);
  return save_settings(section, settings);
}

std::optional<std::string> read_whole_value(const char* key, std::FILE* stream) {
  const int length = PRO_GetStrLen(nullptr, key, stream);
  if (length < 0) {
    return std::nullopt;
  }
  std::string value(static_cast<std::size_t>(length) + 1, '\0');
  if (FSH_GetStr(nullptr, key, value.data(), length, stream) != FSH_OK) {
    return std::nullopt;
  }
  value.resize(std::strlen(value.c_str()));
  return value;
}

}  // namespace filesharing
