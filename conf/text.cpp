#include "conf/text.h"

#include <strings.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace filesharing {

namespace {

// isspace(3) of the C locale.
bool is_space(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

std::int64_t to_long(std::string_view text) {
  using Limits = std::numeric_limits<std::int64_t>;
  while (!text.empty() && is_space(text.front())) {
    text.remove_prefix(1);
  }
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  std::int64_t number = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), number).ec ==
      std::errc::result_out_of_range) {
    return text.front() == '-' ? Limits::min() : Limits::max();
  }
  return number;
}

}  // namespace

std::string format(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  std::string text = format_list(pattern, arguments);
  va_end(arguments);
  return text;
}

std::string format_list(const char* pattern, va_list arguments) {
  char* formatted = nullptr;
  if (vasprintf(&formatted, pattern, arguments) < 0) {
    throw std::bad_alloc();
  }
  const std::unique_ptr<char, void (*)(void*)> owner(formatted, std::free);
  return formatted;
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

std::int32_t to_int(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(to_long(text), Limits::min(), Limits::max()));
}

std::uint32_t to_unsigned(std::string_view text) {
  constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
  const std::int64_t number = to_long(text);
  return static_cast<std::uint32_t>(number < -kMost || number > kMost ? kMost : number);
}

std::string_view take_until(std::string_view& rest, char separator) {
  const Halves halves = split_at(rest, separator);
  rest = halves.tail;
  return halves.head;
}

std::string_view take_line(std::string_view& rest) {
  const std::size_t end = rest.find('\n');
  const std::string_view line =
      rest.substr(0, end == std::string_view::npos ? rest.size() : end + 1);
  rest.remove_prefix(line.size());
  return line;
}

void end_last_line(std::string& text) {
  if (!text.empty() && text.back() != '\n') {
    text += '\n';
  }
}

std::string with_single_slashes(std::string_view path) {
  std::string result;
  for (const char character : path) {
    if (character != '/' || !result.ends_with('/')) {
      result += character;
    }
  }
  return result;
}

Halves split_at(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) {
    return {.found = false, .head = text, .tail = {}};
  }
  return {.found = true, .head = text.substr(0, at), .tail = text.substr(at + 1)};
}

}  // namespace filesharing
