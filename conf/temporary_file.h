// A temporary file, removed when it goes out of scope.
#ifndef FILESHARING_CONF_TEMPORARY_FILE_H
#define FILESHARING_CONF_TEMPORARY_FILE_H

#include <string>

namespace filesharing {

enum class TemporaryPlace {
  kConfigurationVolume,  // where GetTmpFileName says: on the data disk when there is one
  kTmp,                  // "/tmp/tmpfile.XXXXXX", whatever volume there is
};

class TemporaryFile {
 public:
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { remove(); }

  // Makes the file, empty and closed. False when it can not be made.
  [[nodiscard]] bool make(TemporaryPlace place);

  void remove();

  // Leaves the file behind: it is not removed any more.
  void leave() { path_.clear(); }

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace filesharing

#endif
