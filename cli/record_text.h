// Texts into the fixed fields of the library's records.
#ifndef FILESHARE_RECORD_TEXT_H
#define FILESHARE_RECORD_TEXT_H

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace fileshare {

// Cut to the field and terminated; the checks of names.h keep longer ones out.
template <std::size_t N>
void fill(char (&field)[N], std::string_view text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + N, '\0');
}

}  // namespace fileshare

#endif
