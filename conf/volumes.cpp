#include "conf/volumes.h"

#include <unistd.h>

#include "conf/text.h"
#include "platform/utility/utility.h"

namespace filesharing {

namespace {
constexpr std::array kFixedVolumes{1, 2, 5};
}

int configuration_volume() {
  for (const int volume : kFixedVolumes) {
    if (access(format("/harddisk/volume_%d/conf/.qv27", volume).c_str(), F_OK) == 0) {
      return volume;
    }
  }
  return 0;
}

DiskPresence::DiskPresence() {
  static_cast<void>(DSK_DetectSysDisk(entries_.data()));  // it fails with every entry at 0
}

int DiskPresence::first_fixed_volume() const {
  for (const int number : kFixedVolumes) {
    if (volume(number) == 1) {
      return number;
    }
  }
  return 0;
}

}  // namespace filesharing
