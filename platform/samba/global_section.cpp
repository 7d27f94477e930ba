#include "platform/samba/global_section.h"

#include <algorithm>
#include <vector>

namespace samba {
namespace {

constexpr std::string_view kSpaces = " \t\n\v\f\r";  // to Samba

// A line with those that a backslash at its end joins to it.
struct Line {
  std::string text;        // as it stands, line ends included
  std::string name;        // what is in a header's brackets or before the "=", as Samba compares it
  std::string value;       // what is behind the "="
  bool is_header = false;  // what is joined to one is skipped
  bool is_global = false;  // of the section "global", its header included
};

// The lines of a section, its header left out, by their places among all.
struct Section {
  size_t begin;
  size_t include;  // of the first that includes a file, or the end
  size_t end;
};

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kSpaces), text.size()));
  return text.substr(0, text.find_last_not_of(kSpaces) + 1);
}

// Samba compares names without regard to spaces and to the case of ASCII's letters.
std::string compared(std::string_view name) {
  std::string result;
  for (const char c : name) {
    if (kSpaces.find(c) != kSpaces.npos) continue;
    result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return result;
}

bool is_comment(std::string_view line) {
  line = trimmed(line);
  return line.starts_with(';') || line.starts_with('#');
}

bool is_joined_to_next(std::string_view line) {
  return line.ends_with('\n') && trimmed(line).ends_with('\\');
}

std::string_view line_at(std::string_view text, size_t begin) {
  const size_t line_feed = text.find('\n', begin);
  return text.substr(begin, line_feed == text.npos ? text.npos : line_feed + 1 - begin);
}

// The first line of a text with those that are joined to it. A comment is joined to none.
std::string_view first_line(std::string_view text) {
  std::string_view line = line_at(text, 0);
  if (is_comment(line)) return line;
  size_t end = line.size();
  while (is_joined_to_next(line)) {
    line = line_at(text, end);
    end += line.size();
  }
  return text.substr(0, end);
}

// A line's text without the spaces before it and the backslashes that join it to the next.
std::string content_of(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(kSpaces), line.size()));
  std::string content;
  for (size_t at = 0; at < line.size();) {
    const std::string_view part = line_at(line, at);
    at += part.size();
    content += is_joined_to_next(part) ? part.substr(0, part.rfind('\\')) : part;
  }
  return content;
}

Line parsed(std::string_view text) {
  Line line;
  line.text = text;
  if (is_comment(text)) return line;
  const std::string content = content_of(text);
  const size_t close = content.find(']');
  const size_t equals = content.find('=');
  if (content.starts_with('[')) {  // without a "]", Samba refuses the file
    line.is_header = close != content.npos;
    line.name = compared(std::string_view(content).substr(1, close - 1));
  } else if (equals != content.npos) {
    line.name = compared(std::string_view(content).substr(0, equals));
    line.value = trimmed(std::string_view(content).substr(equals + 1));
  }
  return line;
}

std::vector<Line> lines_of(std::string_view text) {
  std::vector<Line> lines;
  bool is_global = true;  // as the lines before the first header are
  while (!text.empty()) {
    Line line = parsed(first_line(text));
    text.remove_prefix(line.text.size());
    if (line.is_header) is_global = line.name == "global" || line.name == "globals";
    line.is_global = is_global;
    lines.push_back(std::move(line));
  }
  return lines;
}

// Whether PRO_SetStr takes it for the section's header, or a line of this key, too.
bool is_plain_header(const Line& line) {
  const std::string_view text = line.text;
  return text.starts_with('[') && line.name == "global" &&
         trimmed(text.substr(1, text.find(']') - 1)).size() == line.name.size();
}

bool is_plain_line(const Line& line, std::string_view key) {
  const std::string_view text = trimmed(line.text);
  return line_at(line.text, 0) == line.text && !is_joined_to_next(line.text) &&
         text.starts_with(key) && trimmed(text.substr(key.size())).starts_with('=');
}

// The section at the head of the file. It is made when another header comes first: a share has what
// stands before it for its defaults.
Section make_first_section(std::vector<Line>& lines) {
  const auto is_header = [](const Line& line) { return line.is_header; };
  auto header = std::find_if(lines.begin(), lines.end(), is_header);
  if (header == lines.end() || !is_plain_header(*header)) {
    header = lines.insert(lines.begin(), parsed("[global]\n"));
  }
  const auto end = std::find_if(header + 1, lines.end(), is_header);
  const auto include =
      std::find_if(header + 1, end, [](const Line& line) { return line.name == "include"; });
  const auto place = [&](auto line) { return static_cast<size_t>(line - lines.begin()); };
  return {.begin = place(header) + 1, .include = place(include), .end = place(end)};
}

// Whether PRO_SetStr, too, puts a new line into this section: it knows neither includes nor headers
// behind blanks.
bool ends_plainly(const std::vector<Line>& lines, const Section& section) {
  return section.include == section.end &&
         (section.end == lines.size() || lines[section.end].text.starts_with('['));
}

// The places of the lines that set a key.
std::vector<size_t> places_of(const GlobalKey& key, const std::vector<Line>& lines) {
  std::vector<size_t> places;
  for (size_t at = 0; at < lines.size(); ++at) {
    const Line& line = lines[at];
    if (!line.is_global || line.is_header || line.name.empty()) continue;
    if (line.name == compared(key.name) || line.name == compared(key.synonym)) places.push_back(at);
  }
  return places;
}

// The line that sets a key, without its end. A backslash there would join the next one to it.
std::string line_of(const GlobalKey& key, std::string_view value) {
  value = value.substr(0, value.find_last_not_of(std::string(kSpaces) + '\\') + 1);
  return std::string(key.name).append("=").append(value);
}

std::string_view line_end_of(std::string_view line) {
  if (line.ends_with("\r\n")) return "\r\n";
  return line.ends_with('\n') ? "\n" : "";
}

// The one of these lines that stays: the first before what the section includes, a plain one if
// there is any.
std::optional<size_t> staying(const std::vector<size_t>& places, const std::vector<Line>& lines,
                              const Section& section, std::string_view key) {
  std::optional<size_t> first;
  for (const size_t at : places) {
    if (at < section.begin || at >= section.include) continue;
    if (is_plain_line(lines[at], key)) return at;
    if (!first) first = at;
  }
  return first;
}

// Sets a key in the line that stays and takes its others away. Returns the line to add when none
// stays.
std::string set_key(std::vector<Line>& lines, const Section& section, const GlobalKey& key) {
  const std::vector<size_t> places = places_of(key, lines);
  if (!key.value && places.empty() && ends_plainly(lines, section)) return "";
  const std::string_view in_force = places.empty() ? key.when_missing : lines[places.back()].value;
  const std::string text = line_of(key, key.value ? *key.value : in_force);
  const std::optional<size_t> stays = staying(places, lines, section, key.name);
  for (const size_t at : places) {
    std::string& line = lines[at].text;
    if (at != stays) {
      line.clear();
    } else if (key.value || !is_plain_line(lines[at], key.name)) {
      line = std::string(text).append(line_end_of(line));
    }
  }
  return stays ? "" : text + "\n";
}

// Where the section's new lines go: before what it includes, else behind its last line that is not
// blank.
size_t place_of_new(const std::vector<Line>& lines, const Section& section) {
  if (section.include < section.end) return section.include;
  size_t place = section.end;
  while (place > section.begin && trimmed(lines[place - 1].text).empty()) --place;
  return place;
}

// What has to stand between the file's last line and another one that is not joined to it.
std::string separator_behind(const std::string& line) {
  if (line.empty()) return "";  // taken away: not the last one
  const std::string ended = line.ends_with('\n') ? line : line + '\n';
  const bool joins = first_line(ended + "next").size() > ended.size();
  return ended.substr(line.size()) + (joins ? "\n" : "");
}

}  // namespace

std::string with_global_keys(std::string_view text, std::span<const GlobalKey> keys) {
  std::vector<Line> lines = lines_of(text);
  const Section section = make_first_section(lines);
  std::string added;
  for (const GlobalKey& key : keys) added += set_key(lines, section, key);
  std::string& before = lines[place_of_new(lines, section) - 1].text;
  if (!added.empty()) before += separator_behind(before) + added;
  std::string result;
  for (const Line& line : lines) result += line.text;
  return result;
}

}  // namespace samba
