#include "conf/stream.h"

#include <unistd.h>

#include <array>
#include <tuple>

namespace filesharing {

Stream open_stream(const std::string& path, const char* mode) {
  return Stream(std::fopen(path.c_str(), (std::string(mode) + "e").c_str()));
}

void write_text(std::FILE* stream, std::string_view text) {
  std::ignore = std::fwrite(text.data(), 1, text.size(), stream);  // ferror remembers
}

bool ends_within_line(std::FILE* stream) {
  const bool within = std::fseek(stream, -1, SEEK_END) == 0 && std::getc(stream) != '\n';
  return std::fseek(stream, 0, SEEK_END) == 0 && within;
}

bool close_written(Stream stream) {
  const bool written = std::ferror(stream.get()) == 0;
  return (std::fclose(stream.release()) == 0) && written;
}

bool close_flushed(Stream stream) {
  const bool flushed = std::fflush(stream.get()) == 0 && fsync(fileno(stream.get())) == 0;
  return close_written(std::move(stream)) && flushed;
}

std::string read_rest(std::FILE* stream) {
  std::string text;
  std::array<char, 4096> block{};
  while (const std::size_t length = std::fread(block.data(), 1, block.size(), stream)) {
    text.append(block.data(), length);
  }
  return text;
}

}  // namespace filesharing
