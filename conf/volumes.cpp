#include "conf/volumes.h"

#include <tuple>

#include <unistd.h>

#include "platform/utility/utility.h"

namespace filesharing {

namespace {

struct FixedVolume {
  int number;
  const char* marker;
};

constexpr FixedVolume kFixedVolumes[] = {{1, "/harddisk/volume_1/conf/.qv27"},
                                         {2, "/harddisk/volume_2/conf/.qv27"},
                                         {5, "/harddisk/volume_5/conf/.qv27"}};

}  // namespace

int configuration_volume() {
  for (const FixedVolume& volume : kFixedVolumes) {
    if (access(volume.marker, F_OK) == 0) {
      return volume.number;
    }
  }
  return 0;
}

DiskPresence::DiskPresence() {
  std::ignore = DSK_DetectSysDisk(entries_.data());  // it fails with every entry at 0
}

int DiskPresence::first_fixed_volume() const {
  for (const FixedVolume& fixed : kFixedVolumes) {
    if (volume(fixed.number) == 1) {
      return fixed.number;
    }
  }
  return 0;
}

}  // namespace filesharing
