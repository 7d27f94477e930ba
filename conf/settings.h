// The settings file: reading keys with their limits and defaults, and saving several at once.
#ifndef FILESHARING_CONF_SETTINGS_H
#define FILESHARING_CONF_SETTINGS_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "conf/paths.h"
#include "conf/result.h"
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

  // Whether the value is exactly "yes"; a missing key says no.
  bool is_yes(const char* key, int limit) const;

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

// A number that is 1 while the value begins with "yes", else 0. Saved as "yes" or "no".
struct YesNo {
  std::int32_t& on;
};

// A field of a service's record and its key in the settings file. A table of them, made for one
// record, serves its reader and its saver.
class SettingField {
 public:
  // At most limit characters of a value.
  template <std::size_t N>
  SettingField(std::string key, char (&text)[N], int limit = N - 1)
      : key_(std::move(key)), text_(text), limit_(std::min<int>(limit, N - 1)) {}
  SettingField(std::string key, std::int32_t& number) : key_(std::move(key)), number_(&number) {}
  SettingField(std::string key, YesNo answer) : key_(std::move(key)), answer_(&answer.on) {}

  // Fills the field; false, with the field as it was, when the key is missing.
  bool read(const SettingsSection& section) const;
  Setting setting() const;

  bool optional = false;  // nothing fails when the key is missing

 private:
  std::string key_;
  std::span<char> text_;  // this, or one of the numbers
  int limit_ = 16;
  std::int32_t* number_ = nullptr;
  std::int32_t* answer_ = nullptr;
};

inline SettingField optional(SettingField field) {
  field.optional = true;
  return field;
}

// Reads all fields. False when a key is missing that is not optional.
bool read_fields(const SettingsSection& section, const std::vector<SettingField>& fields);

std::vector<Setting> settings_of(const std::vector<SettingField>& fields);

// Writes the settings into a section of the settings file in one rewrite. What the profile library
// returned: 0, or -1 with the file untouched. Keys are cut to 23 characters.
int save_settings(const char* section, const std::vector<Setting>& settings);

// The same for a service whose switch is the first of the settings: it is written alone before,
// under switch_key, and the result of that does not count.
int save_switch_first(const char* section, const char* switch_key,
                      const std::vector<Setting>& settings);

inline const char* yes_or_no(bool on) {
  return on ? "yes" : "no";
}

// The boundary of a function that reads or saves a record: -1 without the record or without memory.
template <class Record, class Body>
int with_record(Record* record, Body&& body) {
  return record == nullptr ? -1 : guarded(-1, [&] { return body(*record); });
}

// The value of a key that stands before the first section header, as it stands there; nothing when
// there is no such key.
std::optional<std::string> read_whole_value(const char* key, std::FILE* stream);

}  // namespace filesharing

#endif
