#include "cli/cut_copy.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/file_times.h"
#include "filesharing/conf.h"

namespace fileshare {
namespace {

const char* const kShareFiles[] = {
    "/etc/share.info",
    "/etc/samba/smb.conf",
    "/etc/netatalk/AppleVolumes.conf",
    "/harddisk/volume_1/conf/share.info",
    "/harddisk/volume_2/conf/share.info",
    "/harddisk/volume_3/conf/share.info",
    "/harddisk/volume_4/conf/share.info",
    "/harddisk/volume_5/conf/share.info",
};

std::string content_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> temporary_files() {
  const std::filesystem::path pattern = temporary_pattern();
  const std::string name = pattern.stem().string();  // "tmpfile"
  std::vector<std::string> files;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(pattern.parent_path(), missing)) {
    if (entry.path().stem() == name) files.push_back(entry.path().string());
  }
  return files;
}

// The lock was taken before the temporary file was written, and that before the file was.
bool is_cut(const std::string& file, const std::string& whole) {
  const FileTime locked = written("/tmp/share.lck");
  const FileTime made = written(whole);
  const FileTime copied = written(file);
  if (!locked || !made || !copied || is_before(*made, *locked) || is_before(*copied, *made)) {
    return false;
  }
  const std::string part = content_of(file);
  const std::string all = content_of(whole);
  return part.size() < all.size() && all.starts_with(part);
}

// The part that is there stays as it is, so this can be cut short too.
bool append_rest(const std::string& file, const std::string& whole) {
  const std::size_t there = content_of(file).size();
  std::ofstream out(file, std::ios::binary | std::ios::app);
  out << content_of(whole).substr(there);
  out.close();
  return !out.fail();
}

}  // namespace

int finish_cut_copies() {
  int status = kDone;
  for (const std::string& whole : temporary_files()) {
    for (const char* file : kShareFiles) {
      if (!is_cut(file, whole)) continue;
      if (append_rest(file, whole)) {
        std::cout << "finished the copy to " << file << '\n';
      } else {
        status = refuse(std::string("can not finish the copy to ") + file, kFailed);
      }
    }
  }
  return status;
}

}  // namespace fileshare
