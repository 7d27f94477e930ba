#include "conf/text.h"

#include <strings.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace filesharing {

std::string format(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(nullptr, 0, pattern, arguments);
  va_end(arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  vsnprintf(text.data(), text.size() + 1, pattern, again);
  va_end(again);
  return text;
}

bool equals_ignoring_case(std::string_view left, std::string_view right) {
  return left.size() == right.size() && starts_ignoring_case(left, right);
}

bool starts_ignoring_case(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

std::string_view without_line_end(std::string_view text) {
  return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

std::string_view without_leading_blanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

bool is_blank_line(std::string_view line) {
  return line.empty() || line.front() == '\r' || line.front() == '\n';
}

std::int64_t to_long(std::string_view text) {
  return std::strtoll(std::string(text).c_str(), nullptr, 10);
}

std::int32_t to_int(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(to_long(text), Limits::min(), Limits::max()));
}

std::string_view take_until(std::string_view& rest, char separator) {
  const Halves halves = split_at(rest, separator);
  rest = halves.tail;
  return halves.head;
}

Halves split_at(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) {
    return {.found = false, .head = text, .tail = {}};
  }
  return {.found = true, .head = text.substr(0, at), .tail = text.substr(at + 1)};
}

}  // namespace filesharing
