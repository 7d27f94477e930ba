// The fields of account lines and the names of member lists, read into buffers of every size: the
// first byte of the input is the size.
#include <cstring>
#include <functional>

#include "conf/member_list.h"
#include "filesharing/conf.h"
#include "fuzz/fuzz_input.h"

namespace {

// Reads the text with one of the readers until it tells the end. `read` gives the number of
// characters that it stored, or -1 at the end of the file.
void read_all(std::string text, int size,
              const std::function<int(char* buffer, std::FILE* file)>& read) {
  const fuzz::File file = fuzz::open_text(text);
  const bool has_zero_byte = text.find('\0') != std::string::npos;
  // Each call but the last takes a character from the stream at least.
  for (std::size_t calls = 0; calls <= text.size(); ++calls) {
    std::vector<char> buffer(static_cast<std::size_t>(size), '?');
    const int stored = read(buffer.data(), file.get());
    fuzz::require(std::memchr(buffer.data(), '\0', buffer.size()) != nullptr);
    if (stored < 0) return;
    fuzz::require(stored < size);
    fuzz::require(has_zero_byte || std::strlen(buffer.data()) == static_cast<std::size_t>(stored));
  }
  fuzz::require(false);
}

int stored_or_end(int stored, std::FILE* file) {
  return stored == 0 && std::feof(file) != 0 ? -1 : stored;
}

void walk_members(const std::string& value) {
  std::string rebuilt;
  filesharing::MemberReader members(value);
  while (members.next()) {
    filesharing::append_member(rebuilt, members.member().name, members.member().number);
  }
  fuzz::require(rebuilt.size() <= value.size());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const int room = 2 + data[0];
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  read_all(text, room, [&](char* buffer, std::FILE* file) {
    return GotoUserName(buffer, room, file) == 3 ? -1 : static_cast<int>(std::strlen(buffer));
  });
  read_all(text, room, [&](char* buffer, std::FILE* file) {
    int last = -1;
    const int result = GetUserName(buffer, room, &last, file);
    fuzz::require(last == 0 || last == 1);
    fuzz::require(buffer[0] != ' ');
    return result == 2 ? -1 : static_cast<int>(std::strlen(buffer));
  });
  read_all(text, room, [&](char* buffer, std::FILE* file) {
    return stored_or_end(readvkey(buffer, room, file), file);
  });
  read_all(text, room, [&](char* buffer, std::FILE* file) {
    int status = -1;
    const int stored = ReadGroup(buffer, room, file, &status);
    fuzz::require(status >= 0 && status <= 2);
    return status == 2 ? -1 : stored;
  });
  walk_members(text);
  return 0;
}
