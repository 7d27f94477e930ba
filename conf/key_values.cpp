// Reading the value of a key from a section.
#include <cstring>

#include "conf/line_reader.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/conf.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

using StartsWith = bool (*)(std::string_view text, std::string_view prefix);

bool starts_exactly(std::string_view text, std::string_view prefix) {
  return text.starts_with(prefix);
}

// A section is given by its name, with or without its brackets.
std::string name_of(std::string_view section) {
  const bool bracketed = section.starts_with('[') && section.ends_with(']');
  return std::string(bracketed ? section.substr(1, section.size() - 2) : section);
}

// Leaves the stream behind the section's header, or at the top when there is no such section: the
// key is then looked for before the first header.
void go_to_section(const char* section, std::FILE* stream) {
  std::rewind(stream);
  if (section == nullptr) {
    return;
  }
  const std::string header = '[' + name_of(section) + ']';
  for (LineReader line(stream); line.next();) {
    if (line.text().starts_with(header)) {
      return;
    }
  }
  std::rewind(stream);
}

Result get_value(const char* section, const char* key, char* dst, int max, std::FILE* stream,
                 StartsWith starts_with) {
  if (stream == nullptr || dst == nullptr || key == nullptr || max < 0) {
    return FSH_FAILED;
  }
  go_to_section(section, stream);
  const std::string prefix = std::string(key) + '=';
  for (LineReader line(stream); line.next();) {
    if (line.text().starts_with('[')) {
      return FSH_FAILED;
    }
    if (starts_with(line.text(), prefix)) {
      std::string_view value = without_line_end(line.text());
      value.remove_prefix(std::min(prefix.size(), value.size()));
      value = value.substr(0, static_cast<std::size_t>(max));
      std::memcpy(dst, value.data(), value.size());
      dst[value.size()] = '\0';
      return FSH_OK;
    }
  }
  return FSH_FAILED;
}

unsigned length_to_line_feed(std::FILE* stream) {
  unsigned length = 0;
  for (int next = std::getc(stream); next != '\n' && next != EOF; next = std::getc(stream)) {
    ++length;
  }
  return length;
}

unsigned value_length(const char* section, const char* key, std::FILE* stream) {
  if (key == nullptr || stream == nullptr) {
    return FSH_FAILED;
  }
  if (section == nullptr) {
    std::rewind(stream);
  } else if (PRO_2sect(name_of(section).c_str(), stream) != 0) {
    return FSH_FAILED;
  }
  const std::string prefix = std::string(key) + '=';
  for (PieceReader piece(stream, prefix.size()); piece.next(); piece.skip_rest_of_line()) {
    if (equals_ignoring_case(piece.text(), prefix)) {
      return length_to_line_feed(stream);
    }
    if (piece.text().starts_with('[')) {
      return 0;
    }
  }
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned FSH_GetStr(const char* section, const char* key, char* dst, int max, FILE* stream) {
  return guarded(FSH_FAILED,
                 [&] { return get_value(section, key, dst, max, stream, starts_exactly); });
}

unsigned FSH_GetStrNoCase(const char* section, const char* key, char* dst, int max, FILE* stream) {
  return guarded(FSH_FAILED,
                 [&] { return get_value(section, key, dst, max, stream, starts_ignoring_case); });
}

unsigned FSH_GetStrLen(const char* section, const char* key, FILE* stream) {
  return guarded(FSH_FAILED, [&] { return value_length(section, key, stream); });
}
