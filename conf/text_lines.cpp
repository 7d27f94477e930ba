// Line ends and whole lines.
#include <cstdlib>
#include <cstring>

#include "conf/line_reader.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/conf.h"

using namespace filesharing;

namespace {

constexpr std::size_t kFirstCapacity = 128;

bool is_line_end(char character) {
  return character == '\r' || character == '\n';
}

}  // namespace

void StripEndingSpace(char* str) {
  if (missing(str)) {
    return;
  }
  std::size_t last = std::strlen(str) - 1;
  bool had_line_end = false;
  while (last > 0 && (str[last] == ' ' || is_line_end(str[last]))) {
    had_line_end = had_line_end || is_line_end(str[last]);
    --last;
  }
  if (had_line_end) {
    str[++last] = '\n';
  }
  str[last + 1] = '\0';
}

unsigned GetLineFromFile(char** line, FILE* stream) {
  if (line == nullptr) {
    return FSH_ARGUMENT;
  }
  *line = nullptr;
  if (stream == nullptr) {
    return FSH_ARGUMENT;
  }
  std::size_t capacity = kFirstCapacity;
  auto* buffer = static_cast<char*>(std::malloc(capacity));
  if (buffer == nullptr) {
    return FSH_END_OF_FILE;
  }
  std::size_t length = 0;
  for (int character = std::getc(stream); character != EOF; character = std::getc(stream)) {
    if (character == '\n') {
      buffer[length++] = '\n';
      break;
    }
    if (length == capacity - 2) {
      capacity *= 2;
      auto* larger = static_cast<char*>(std::realloc(buffer, capacity));
      if (larger == nullptr) {
        // Kept: the block so far is not freed; a page that gets here ends at once.
        return FSH_LINE_TOO_LARGE;  // NOLINT(clang-analyzer-unix.Malloc)
      }
      buffer = larger;
    }
    buffer[length++] = static_cast<char>(character);
  }
  if (length == 0) {
    std::free(buffer);
    return FSH_END_OF_FILE;
  }
  buffer[length] = '\0';
  *line = buffer;
  return FSH_OK;
}

int ItemExist(const char* name, const char* path) {
  return guarded(0, [&] {
    if (missing(name) || missing(path)) {
      return 0;
    }
    const Stream stream = open_stream(path, "r");
    if (!stream) {
      return 0;
    }
    for (LineReader line(stream.get()); line.next();) {
      const Halves halves = split_at(line.text(), ':');
      if (halves.found && equals_ignoring_case(halves.head, name)) {
        return 1;
      }
    }
    return 0;
  });
}
