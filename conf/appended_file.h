// A file that entries are added to.
#ifndef FILESHARING_CONF_APPENDED_FILE_H
#define FILESHARING_CONF_APPENDED_FILE_H

#include <sys/types.h>

#include <string>
#include <string_view>

#include "conf/stream.h"

namespace filesharing {

// What is added first starts on a line of its own. What was not written as a whole is cut off
// again: until keep, the file is given back as it was.
class AppendedFile {
 public:
  explicit AppendedFile(const char* path);
  AppendedFile(const AppendedFile&) = delete;
  AppendedFile& operator=(const AppendedFile&) = delete;
  ~AppendedFile();

  bool opened() const { return stream_ != nullptr; }
  void append(std::string_view text);

  // Pushes what was added to the disk. False when a byte of it could not be written.
  [[nodiscard]] bool flush();
  void keep() { kept_ = true; }

 private:
  Stream stream_;
  off_t size_ = 0;  // before
  bool line_open_ = false;
  bool kept_ = false;
};

// Adds one text to a file, as a whole or not at all.
enum class Appended { kWritten, kNotOpened, kNotWritten };
Appended append_to_file(const char* path, std::string_view text);

}  // namespace filesharing

#endif
