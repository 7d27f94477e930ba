// UTF-8 as far as checking names and filling columns needs it.
#ifndef FILESHARE_UTF8_H
#define FILESHARE_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

namespace fileshare {

// A character at the head of a text. size is 0 at the end of the text; where the bytes are no valid
// UTF-8, size is 1 and valid is false.
struct Utf8Character {
  char32_t value = 0;
  std::size_t size = 0;
  bool valid = true;
};
Utf8Character first_character(std::string_view text);

bool is_valid_utf8(std::string_view text);
bool is_control(char32_t character);

// The columns that a terminal gives to a character: 2 for East Asian wide ones, 0 for marks that
// stand on the character before them.
std::size_t columns_of(char32_t character);
std::size_t columns_of(std::string_view text);

// The text with "?" for each control character and each byte that is not UTF-8. Account files can
// hold anything, and a terminal would obey it.
std::string printable(std::string_view text);

// A printable text, cut so that it takes columns at most, with "…" where something was cut off.
std::string cut_to_columns(std::string_view text, std::size_t columns);

}  // namespace fileshare

#endif
