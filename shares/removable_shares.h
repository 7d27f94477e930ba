// The shares of USB disks: a mounted partition is a share, named for its mount point.
#ifndef FILESHARING_SHARES_REMOVABLE_SHARES_H
#define FILESHARING_SHARES_REMOVABLE_SHARES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace filesharing {

// Name of the disk, as in the mount points of its partitions: prefix and number, counted from 1.
std::string removable_disk(std::string_view prefix, std::int64_t index);

// A mounted partition of a disk.
struct RemovableMount {
  std::string_view folder;  // the mount point
  std::string_view name;    // its last component
  int volume;               // 3 or 4
  bool writable;
};

// The partition of `disk` that a line of /proc/mounts, or a piece of one, tells of.
std::optional<RemovableMount> removable_mount(std::string_view line, const std::string& disk);

// Its line in /etc/win_share.info. All users may read, and write where the mount allows it.
std::string removable_registry_line(const RemovableMount& mount);

}  // namespace filesharing

#endif
