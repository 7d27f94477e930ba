#include <cstring>

#include "platform/utility/utility.h"

int DBCS_SpecialChar(const char* text, char* escaped, const char* set) {
  if (text == nullptr || escaped == nullptr || set == nullptr) return -1;
  for (; *text != '\0'; ++text) {
    if (strchr(set, *text) != nullptr) *escaped++ = '\\';
    *escaped++ = *text;
  }
  *escaped = '\0';
  return 0;
}

int DBCS_AnyDBCSInStr(const char* text) {
  if (text == nullptr) return 0;
  for (; *text != '\0'; ++text) {
    if (static_cast<unsigned char>(*text) >= 128) return 1;
  }
  return 0;
}
