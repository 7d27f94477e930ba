#include "platform/profile/profile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <vector>

#include "platform/profile/profile_text.h"
#include "platform/profile/whole_file.h"

namespace {

using profile::Section;

constexpr int kFailed = -1;

// The boundary: running out of memory is a failure like any other.
template <typename Work>
int guarded(Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return kFailed;
  }
}

Section section_named(const char* name) {
  return name == nullptr ? Section() : Section(std::in_place, name);
}

// The whole lines of a stream, of any length.
class Lines {
 public:
  explicit Lines(FILE* stream) : stream_(stream) {}
  ~Lines() { free(buffer_); }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  std::optional<std::string_view> next() {
    const ssize_t length = getline(&buffer_, &size_, stream_);
    if (length < 0) return std::nullopt;
    return std::string_view(buffer_, static_cast<size_t>(length));
  }

 private:
  FILE* stream_;
  char* buffer_ = nullptr;
  size_t size_ = 0;
};

bool go_to_section(Lines& lines, Section section, FILE* stream) {
  rewind(stream);
  if (!section) return true;
  while (const auto line = lines.next()) {
    if (profile::is_header_of(*line, *section)) return true;
  }
  return false;
}

// The value of a key as it stands in the file; it lives as long as the line in `lines`.
std::optional<std::string_view> find_value(Lines& lines, const char* section, const char* key,
                                           FILE* stream) {
  if (key == nullptr || stream == nullptr) return std::nullopt;
  if (!go_to_section(lines, section_named(section), stream)) return std::nullopt;
  while (const auto line = lines.next()) {
    if (profile::ends_section(*line)) return std::nullopt;
    if (const auto value = profile::value_of(*line, key)) return value;
  }
  return std::nullopt;
}

std::string_view without_blanks_before(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return text;
}

// The number that a value is, the blanks round it left out. A "+" is taken, as strtol(3) does.
std::optional<int> number_in(std::string_view text) {
  text = without_blanks_before(text);
  text = text.substr(0, text.find_last_not_of(" \t") + 1);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string_view key_of(const ProfileItem& item) {
  return {item.key, strnlen(item.key, PROFILE_KEY_SIZE)};
}

// The text of a file that is to be changed; a missing file is an empty one.
std::optional<std::string> text_to_change(const char* path) {
  std::optional<std::string> text = profile::read_whole_file(path);
  if (!text && errno == ENOENT) text.emplace();
  return text;
}

struct Setting {
  std::string_view key;
  const char* value;
};

int set_keys(const char* section_name, const std::vector<Setting>& settings, const char* path) {
  std::optional<std::string> text = text_to_change(path);
  if (!text) return kFailed;
  const Section section = section_named(section_name);
  for (const auto& [key, value] : settings) {
    if (value == nullptr || !profile::can_be_written(section, key, value)) return kFailed;
    *text = profile::with_key(*text, section, key, value);
  }
  return profile::replace_whole_file(path, *text) ? 0 : kFailed;
}

}  // namespace

int PRO_GetStr(const char* section, const char* key, char* value, int max, FILE* stream) {
  if (value == nullptr || max < 0) return kFailed;
  Lines lines(stream);
  const auto found = find_value(lines, section, key, stream);
  if (!found) return kFailed;
  const std::string_view text = without_blanks_before(*found);
  const size_t length = text.copy(value, static_cast<size_t>(max));
  value[length] = '\0';
  return 0;
}

int PRO_GetInt(const char* section, const char* key, int* value, FILE* stream) {
  if (value == nullptr) return kFailed;
  Lines lines(stream);
  const auto found = find_value(lines, section, key, stream);
  const auto number = found ? number_in(*found) : std::nullopt;
  if (!number) return kFailed;
  *value = *number;
  return 0;
}

int PRO_GetStrLen(const char* section, const char* key, FILE* stream) {
  Lines lines(stream);
  const auto found = find_value(lines, section, key, stream);
  return found ? static_cast<int>(std::min(found->size(), size_t{INT_MAX})) : kFailed;
}

int PRO_2sect(const char* section, FILE* stream) {
  if (stream == nullptr) return kFailed;
  Lines lines(stream);
  return go_to_section(lines, section_named(section), stream) ? 0 : kFailed;
}

int PRO_SetStr(const char* section, const char* key, const char* value, const char* path) {
  if (key == nullptr || path == nullptr) return kFailed;
  return guarded([&] { return set_keys(section, {{key, value}}, path); });
}

int PRO_SetStr1(const char* section, const char* key, const char* value, const char* path) {
  return PRO_SetStr(section, key, value, path);
}

int PRO_SetInt(const char* section, const char* key, int value, const char* path) {
  char text[16];
  *std::to_chars(text, text + sizeof text - 1, value).ptr = '\0';
  return PRO_SetStr(section, key, text, path);
}

int PRO_SetMultiItemStr(const char* section, const ProfileItem* items, int count,
                        const char* path) {
  if (items == nullptr || count < 0 || path == nullptr) return kFailed;
  if (count == 0) return 0;
  return guarded([&] {
    std::vector<Setting> settings;
    for (const ProfileItem& item : std::span(items, static_cast<size_t>(count))) {
      settings.push_back({key_of(item), item.value});
    }
    return set_keys(section, settings, path);
  });
}

int PRO_DelSect(const char* section, const char* path) {
  if (section == nullptr || path == nullptr) return kFailed;
  return guarded([&] {
    const auto text = profile::read_whole_file(path);
    if (!text) return kFailed;
    const std::string rest = profile::without_section(*text, section);
    return rest == *text || profile::replace_whole_file(path, rest) ? 0 : kFailed;
  });
}
