#include "conf/appended_file.h"

#include <unistd.h>

#include <tuple>
#include <utility>

namespace filesharing {

AppendedFile::AppendedFile(const char* path) : stream_(open_stream(path, "a+")) {
  if (stream_) {
    line_open_ = ends_within_line(stream_.get());
    size_ = ftello(stream_.get());
  }
}

AppendedFile::~AppendedFile() {
  if (!stream_ || kept_) {
    return;
  }
  const int file = dup(fileno(stream_.get()));
  stream_.reset();  // first: what it still held is written when it is closed
  std::ignore = ftruncate(file, size_);
  std::ignore = close(file);
}

void AppendedFile::append(std::string_view text) {
  write_text(stream_.get(), line_open_ ? "\n" : "");
  write_text(stream_.get(), text);
  line_open_ = false;
}

bool AppendedFile::flush() {
  std::FILE* const file = stream_.get();
  const bool flushed = std::fflush(file) == 0 && fsync(fileno(file)) == 0;
  return flushed && std::ferror(file) == 0;
}

Appended append_to_file(const char* path, std::string_view text) {
  AppendedFile file(path);
  if (!file.opened()) {
    return Appended::kNotOpened;
  }
  file.append(text);
  if (!file.flush()) {
    return Appended::kNotWritten;
  }
  file.keep();
  return Appended::kWritten;
}

}  // namespace filesharing
