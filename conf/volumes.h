// The data volumes: which of them carries the configuration, and which are present.
#ifndef FILESHARING_CONF_VOLUMES_H
#define FILESHARING_CONF_VOLUMES_H

#include <array>

namespace filesharing {

// The first of the volumes 1, 2 and 5 whose conf folder holds the marker file; 0 without one.
int configuration_volume();

// The disk presence record, read when it is made. volume(n) is the record's entry n, counted from
// 1: the platform fills entries 1 to 5, for the volumes 1 to 4 and the RAID volume 5.
class DiskPresence {
 public:
  DiskPresence();
  int volume(int number) const { return entries_[static_cast<unsigned>(number - 1)]; }

  // The first of the volumes 1, 2 and 5 whose entry is 1; 0 without one.
  int first_fixed_volume() const;

 private:
  std::array<int, 32> entries_{};
};

}  // namespace filesharing

#endif
