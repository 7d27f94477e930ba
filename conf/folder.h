// Reading folders.
#ifndef FILESHARING_CONF_FOLDER_H
#define FILESHARING_CONF_FOLDER_H

#include <dirent.h>

#include <memory>
#include <string>
#include <tuple>

namespace filesharing {

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
