#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/utility/utility.h"

namespace {

constexpr int kVolumes = 5;
constexpr std::string_view kMountPoint = "/harddisk/volume_";  // and one figure
constexpr int kUsableFirst[] = {1, 2, 5, 3, 4};

// The second field of a line of /proc/mounts.
std::string_view mount_point_of(std::string_view line) {
  const size_t first = line.find(' ');
  if (first == line.npos) return {};
  line.remove_prefix(first + 1);
  return line.substr(0, line.find(' '));
}

// The volume mounted at a mount point; 0 for any other mount.
int volume_at(std::string_view mount_point) {
  if (!mount_point.starts_with(kMountPoint)) return 0;
  mount_point.remove_prefix(kMountPoint.size());
  if (mount_point.size() != 1) return 0;
  const int volume = mount_point.front() - '0';
  return volume >= 1 && volume <= kVolumes ? volume : 0;
}

}  // namespace

int DSK_DetectSysDisk(int* record) {
  if (record == nullptr) return -1;
  std::fill_n(record, kVolumes, 0);
  FILE* mounts = fopen("/proc/mounts", "re");
  if (mounts == nullptr) return -1;
  char* line = nullptr;
  size_t size = 0;
  while (getline(&line, &size, mounts) >= 0) {
    const int volume = volume_at(mount_point_of(line));
    if (volume != 0) record[volume - 1] = 1;
  }
  free(line);
  (void)fclose(mounts);  // read only: nothing can be lost
  return 0;
}

int FirstAvaibleVolume(void) {
  int mounted[DSK_RECORD_SIZE] = {};
  if (DSK_DetectSysDisk(mounted) != 0) return -1;
  for (const int volume : kUsableFirst) {
    if (mounted[volume - 1] == 1) return volume;
  }
  return -1;
}
