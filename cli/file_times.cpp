#include "cli/file_times.h"

#include <sys/stat.h>

#include <tuple>

#include "filesharing/conf.h"

namespace fileshare {

FileTime written(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? FileTime(status.st_mtim) : std::nullopt;
}

bool is_before(const timespec& one, const timespec& other) {
  if (one.tv_nsec == 0 || other.tv_nsec == 0) return one.tv_sec < other.tv_sec;
  return std::tie(one.tv_sec, one.tv_nsec) < std::tie(other.tv_sec, other.tv_nsec);
}

std::string temporary_pattern() {
  char pattern[64] = "";
  GetTmpFileName(pattern);
  return pattern;
}

}  // namespace fileshare
