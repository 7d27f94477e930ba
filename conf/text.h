// Small operations on text that every room needs.
#ifndef FILESHARING_CONF_TEXT_H
#define FILESHARING_CONF_TEXT_H

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "filesharing/types.h"

namespace filesharing {

// printf and vprintf into a string of any length.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);
[[gnu::format(printf, 1, 0)]] std::string format_list(const char* pattern, va_list arguments);

inline bool missing(const char* text) {
  return text == nullptr || *text == '\0';
}

// Fills a field of a record: cut to the field, always terminated, zero to its end.
template <std::size_t N>
void copy_field(char (&field)[N], std::string_view text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::memset(field, 0, N);
  text.copy(field, length);
}

// The text of a field that a caller filled, perhaps to its last byte.
template <std::size_t N>
std::string_view field_text(const char (&field)[N]) {
  return {field, strnlen(field, N)};
}

bool equals_ignoring_case(std::string_view left, std::string_view right);
bool starts_ignoring_case(std::string_view text, std::string_view prefix);

// Without the carriage returns and line feeds at the end.
std::string_view without_line_end(std::string_view text);

std::string_view without_leading_blanks(std::string_view text);

// An empty line, or one of a line end alone.
bool is_blank_line(std::string_view line);

// Number at the start of a text as atoi(3) reads it, but defined for numbers of any size: they stop
// at the limits of the type.
std::int32_t to_int(std::string_view text);

// The same into a type without a sign: a negative number wraps round, as with strtoul(3) where a
// long has 32 bits.
std::uint32_t to_unsigned(std::string_view text);

// Takes the text up to the next separator off the front of rest, and the separator with it. The
// last item is what is left; rest is empty then.
std::string_view take_until(std::string_view& rest, char separator);

// Takes the first line off the front of rest, with its line feed if it has one.
std::string_view take_line(std::string_view& rest);

// Ends a last line that has no line feed, so that nothing is glued to it.
void end_last_line(std::string& text);

// A path with one slash in the place of several.
std::string with_single_slashes(std::string_view path);

// The text before and behind the first separator; found is false without one, and head the whole.
struct Halves {
  bool found;
  std::string_view head;
  std::string_view tail;
};
Halves split_at(std::string_view text, char separator);

template <std::size_t N>
void end_text(char (&field)[N]) {
  field[N - 1] = '\0';
}

// Ends every text of a record within its field.
inline void end_texts(UserInfo& user) {
  end_text(user.name);
  end_text(user.description);
  end_text(user.password);
}
inline void end_texts(ShareInfo& share) {
  end_text(share.name);
  end_text(share.comment);
  end_text(share.path);
}

}  // namespace filesharing

#endif
