// Profile files. Input: the section, the key, a value, then the file.
#include "platform/profile/profile.h"

#include <cstring>

#include "fuzz/fuzz_input.h"
#include "platform/profile/profile_text.h"

namespace {

void read_key(const char* section, const char* key, std::string text) {
  const fuzz::File file = fuzz::open_text(text);
  const int length = PRO_GetStrLen(section, key, file.get());
  std::vector<char> value(static_cast<std::size_t>(length < 0 ? 0 : length) + 1, '?');
  const int found = PRO_GetStr(section, key, value.data(), length < 0 ? 0 : length, file.get());
  fuzz::require((found == 0) == (length >= 0));
  fuzz::require(found != 0 || std::memchr(value.data(), '\0', value.size()) != nullptr);
  int number = 0;
  fuzz::require(PRO_GetInt(section, key, &number, file.get()) != 0 || found == 0);
  fuzz::require(PRO_2sect(section, file.get()) == 0 || found != 0);
}

// What was set is found, in a file that has grown by no more than it, and setting it again changes
// nothing. Blanks before a key are no part of it, and a carriage return at the end of a value
// becomes one of the line's.
void set_key(const profile::Section& section, const std::string& key, const std::string& value,
             const std::string& text) {
  if (!profile::can_be_written(section, key, value)) return;
  if (key.find_first_of(" \t") == 0 || value.ends_with('\r')) return;
  const std::string changed = profile::with_key(text, section, key, value);
  fuzz::require(changed.size() <=
                text.size() + section.value_or("").size() + key.size() + value.size() + 6);
  fuzz::require(profile::with_key(changed, section, key, value) == changed);
  if ((key + value).find('\0') != std::string::npos) return;
  std::string copy = changed;
  const fuzz::File file = fuzz::open_text(copy);
  const std::string name(section.value_or(""));
  if (name.find('\0') != std::string::npos) return;
  fuzz::require(PRO_GetStrLen(section ? name.c_str() : nullptr, key.c_str(), file.get()) >= 0);
}

void remove_section(const std::string& section, const std::string& text) {
  const std::string rest = profile::without_section(text, section);
  fuzz::require(rest.size() <= text.size());
  fuzz::require(profile::without_section(rest, section) == rest);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string section = input.take_line();
  const std::string key = input.take_line();
  const std::string value = input.take_line();
  const std::string text = input.rest();
  read_key(section.c_str(), key.c_str(), text);
  read_key(nullptr, key.c_str(), text);
  set_key(section, key, value, text);
  set_key(std::nullopt, key, value, text);
  remove_section(section, text);
  return 0;
}
