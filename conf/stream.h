// An owned stream, closed when it goes out of scope.
#ifndef FILESHARING_CONF_STREAM_H
#define FILESHARING_CONF_STREAM_H

#include <dirent.h>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

namespace filesharing {

struct CloseStream {
  // What matters about closing a written stream is asked with close_written; here it is too late.
  void operator()(std::FILE* stream) const { std::ignore = std::fclose(stream); }
};

using Stream = std::unique_ptr<std::FILE, CloseStream>;

// Null when the file can not be opened. The descriptor is not passed on to commands.
Stream open_stream(const std::string& path, const char* mode);

// Writes every byte of text; a failure shows in ferror and so in close_written.
void write_text(std::FILE* stream, std::string_view text);

// Whether what is appended to a file would begin in the middle of its last line. The stream is open
// for reading and appending.
bool ends_within_line(std::FILE* stream);

// Closes a stream that was written to. False when a byte of it could not be written.
[[nodiscard]] bool close_written(Stream stream);

// Pushes what was written to the disk, and closes. False as close_written.
[[nodiscard]] bool close_flushed(Stream stream);

// The rest of the stream.
std::string read_rest(std::FILE* stream);

struct CloseFolder {
  // Nothing was written: there is nothing to lose.
  void operator()(DIR* folder) const { std::ignore = closedir(folder); }
};

// A folder that is open for readdir(3); null when it can not be opened.
using Folder = std::unique_ptr<DIR, CloseFolder>;

inline Folder open_folder(const std::string& path) {
  return Folder(opendir(path.c_str()));
}

}  // namespace filesharing

#endif
