#include "platform/profile/profile_text.h"

#include <algorithm>

#include "platform/text/fold_case.h"

namespace profile {
namespace {

constexpr std::string_view kBlanks = " \t";

// Where something stands in a text: [begin, end).
struct Range {
  size_t begin;
  size_t end;
};

std::string_view without_leading_blanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

std::string_view trimmed(std::string_view text) {
  text = without_leading_blanks(text);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view without_line_end(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool is_blank(std::string_view line) {
  return without_leading_blanks(without_line_end(line)).empty();
}

// The line that begins at `begin`, its line end included.
std::string_view line_at(std::string_view text, size_t begin) {
  const size_t line_feed = text.find('\n', begin);
  return text.substr(begin, line_feed == text.npos ? text.npos : line_feed + 1 - begin);
}

// From `begin` up to the next line that ends a section.
Range body_from(std::string_view text, size_t begin) {
  size_t end = begin;
  while (end < text.size() && !ends_section(line_at(text, end))) end += line_at(text, end).size();
  return {begin, end};
}

// The lines of a section, its header left out; nothing when there is no such section.
std::optional<Range> find_section(std::string_view text, Section section) {
  if (!section) return body_from(text, 0);
  for (size_t at = 0; at < text.size();) {
    const std::string_view line = line_at(text, at);
    at += line.size();
    if (is_header_of(line, *section)) return body_from(text, at);
  }
  return std::nullopt;
}

// The first line of a key within `body`, its line end left out.
std::optional<Range> find_key(std::string_view text, Range body, std::string_view key) {
  for (size_t at = body.begin; at < body.end;) {
    const std::string_view line = line_at(text, at);
    if (value_of(line, key)) return Range{at, at + without_line_end(line).size()};
    at += line.size();
  }
  return std::nullopt;
}

// Where a section's new line goes: behind its last line that is not blank.
size_t end_of_lines(std::string_view text, Range body) {
  size_t end = body.begin;
  for (size_t at = body.begin; at < body.end;) {
    const std::string_view line = line_at(text, at);
    at += line.size();
    if (!is_blank(line)) end = at;
  }
  return end;
}

// The text with `lines` put in at a line's beginning, or behind a last line without a line feed.
std::string with_lines_at(std::string_view text, size_t at, const std::string& lines) {
  std::string result(text.substr(0, at));
  if (!result.empty() && !result.ends_with('\n')) result += '\n';
  return result.append(lines).append(text.substr(at));
}

}  // namespace

bool ends_section(std::string_view line) {
  return line.starts_with('[');
}

bool is_header_of(std::string_view line, std::string_view name) {
  const size_t close = line.find(']');
  if (!ends_section(line) || close == line.npos) return false;
  return text::equal_without_case(trimmed(line.substr(1, close - 1)), trimmed(name));
}

std::optional<std::string_view> value_of(std::string_view line, std::string_view key) {
  std::string_view rest = without_leading_blanks(line);
  if (!rest.starts_with(key)) return std::nullopt;
  rest = without_leading_blanks(rest.substr(key.size()));
  if (!rest.starts_with('=')) return std::nullopt;
  return without_line_end(rest.substr(1));
}

bool can_be_written(Section section, std::string_view key, std::string_view value) {
  if (section && section->find_first_of("]\n") != section->npos) return false;
  if (key.empty() || key.front() == '[' || key.find('\n') != key.npos) return false;
  return value.find('\n') == value.npos;
}

std::string with_key(std::string_view text, Section section, std::string_view key,
                     std::string_view value) {
  const std::string line = std::string(key).append("=").append(value);
  const std::optional<Range> body = find_section(text, section);
  if (!body) {
    const std::string header = "[" + std::string(section.value_or("")) + "]\n";
    return with_lines_at(text, text.size(), header + line + "\n");
  }
  if (const std::optional<Range> old = find_key(text, *body, key)) {
    return std::string(text.substr(0, old->begin)).append(line).append(text.substr(old->end));
  }
  return with_lines_at(text, end_of_lines(text, *body), line + "\n");
}

std::string without_section(std::string_view text, std::string_view name) {
  std::string result;
  bool dropping = false;
  for (size_t at = 0; at < text.size();) {
    const std::string_view line = line_at(text, at);
    at += line.size();
    if (ends_section(line)) dropping = is_header_of(line, name);
    if (!dropping) result += line;
  }
  return result;
}

}  // namespace profile
