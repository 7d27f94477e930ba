#include <string_view>

#include "platform/samba/samba.h"
#include "platform/text/fold_case.h"

char* strchr_m(const char* text, int character) {
  if (text == nullptr || character < 0) return nullptr;
  std::string_view rest(text);
  while (!rest.empty()) {
    const char* const here = rest.data();
    if (text::take_character(rest) == static_cast<uint32_t>(character)) {
      return const_cast<char*>(here);  // the contract of strchr(3)
    }
  }
  return character == 0 ? const_cast<char*>(rest.data()) : nullptr;
}

int strequal(const char* text1, const char* text2) {
  if (text1 == nullptr || text2 == nullptr) return text1 == text2 ? 1 : 0;
  return text::equal_without_case(text1, text2) ? 1 : 0;
}
