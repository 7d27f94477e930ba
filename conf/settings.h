// The settings file: reading keys with their limits and defaults, and saving several at once.
#ifndef FILESHARING_CONF_SETTINGS_H
#define FILESHARING_CONF_SETTINGS_H

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "conf/paths.h"
#include "conf/stream.h"

namespace filesharing {

// A section of an open settings file.
class SettingsSection {
 public:
  SettingsSection(std::FILE* stream, const char* section) : stream_(stream), section_(section) {}

  // The value of a key, at most limit characters of it; nothing when the key is missing. A key
  // without a value is there, with an empty text.
  std::optional<std::string> text(const char* key, int limit) const;
  std::optional<std::int32_t> number(const char* key) const;

  // Whether the value is exactly "yes", or begins with it; a missing key says no.
  bool is_yes(const char* key, int limit) const;
  bool begins_with_yes(const char* key, int limit) const;

 private:
  std::FILE* stream_;
  const char* section_;
};

class SettingsFile {
 public:
  explicit SettingsFile(const char* path = paths::kSettings) : stream_(open_stream(path, "r")) {}

  bool opened() const { return stream_ != nullptr; }
  SettingsSection section(const char* name) const { return {stream_.get(), name}; }

  // Leaves the stream open until the process ends.
  void leave_open() { std::ignore = stream_.release(); }

 private:
  Stream stream_;
};

struct Setting {
  std::string key;
  std::string value;
};

// Writes the settings into a section of the settings file in one rewrite. What the profile library
// returned: 0, or -1 with the file untouched. Keys are cut to 23 characters.
int save_settings(const char* section, const std::vector<Setting>& settings);

inline const char* yes_or_no(bool on) {
  return on ? "yes" : "no";
}

}  // namespace filesharing

#endif
