// Keys in sections, as the library reads them. Input: the section, the key, then the file.
#include <cstring>

#include "filesharing/conf.h"
#include "fuzz/fuzz_input.h"

namespace {

using Getter = decltype(&FSH_GetStr);

void get(Getter getter, const char* section, const char* key, std::FILE* file) {
  for (const int max : {0, 1, 20, 4096}) {
    std::vector<char> value(static_cast<std::size_t>(max) + 1, '?');
    if (getter(section, key, value.data(), max, file) == FSH_OK) {
      fuzz::require(std::memchr(value.data(), '\0', value.size()) != nullptr);
    } else {
      fuzz::require(value[0] == '?');
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string section = input.take_line();
  const std::string key = input.take_line();
  std::string text = input.rest();
  const fuzz::File file = fuzz::open_text(text);
  for (const char* const name : {section.c_str(), static_cast<const char*>(nullptr)}) {
    get(FSH_GetStr, name, key.c_str(), file.get());
    get(FSH_GetStrNoCase, name, key.c_str(), file.get());
    const unsigned length = FSH_GetStrLen(name, key.c_str(), file.get());
    fuzz::require(length == FSH_FAILED || length <= text.size());
  }
  return 0;
}
