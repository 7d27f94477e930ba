// Addresses as people type them, with blanks between the numbers.
#include "filesharing/services.h"

void omitIpSpace(char* dst, const char* src, int len) {
  if (dst == nullptr) {
    return;
  }
  for (int i = 0; src != nullptr && i < len && src[i] != '\0'; ++i) {
    if (src[i] != ' ') {
      *dst++ = src[i];
    }
  }
  *dst = '\0';
}
