// Copying a file over another one with the cp command, so that the target is never left with a part
// of it.
#ifndef FILESHARING_CONF_FILE_COPY_H
#define FILESHARING_CONF_FILE_COPY_H

#include <optional>
#include <string>
#include <string_view>

namespace filesharing {

enum class Through { kSystem, kUtilityLibrary };  // system(3), or SYSTEM of the utility library

struct FileCopy {
  std::string from;
  std::string to;
  Through through = Through::kSystem;
  int runs = 1;               // the status of the last run counts
  bool mends_onward = false;  // what a cut copy leaves is made the new content, not the old again
};

struct CopyStatus {
  int status;  // as system(3) gives it
  int cause;   // errno
};

// Runs the command. The target holds its old content or the new one afterwards: without room for
// what it grows by the command is not run (ENOSPC), and what a cut copy has left is mended (EIO).
CopyStatus copy_file(const FileCopy& copy);

// The content of a file; nothing when it is not there, cannot be read, or is no file.
std::optional<std::string> read_file(const std::string& path);

// Makes the content of a file in its place what it was before a write that failed; a file that was
// not there goes. For a file that could not be read before nothing can be done.
class OldContent {
 public:
  explicit OldContent(std::string path);
  bool is(const std::optional<std::string>& content) const { return content == content_; }
  void put_back() const;

 private:
  std::string path_;
  bool existed_;
  std::optional<std::string> content_;
};

}  // namespace filesharing

#endif
