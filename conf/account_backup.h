// The copies of the account and share files that a change falls back on.
#ifndef FILESHARING_CONF_ACCOUNT_BACKUP_H
#define FILESHARING_CONF_ACCOUNT_BACKUP_H

#include <cstdint>

namespace filesharing {

// What a change of files writes, at most.
struct ChangeSize {
  int mask;             // of FshFile: the files that it changes
  int copied;           // those that are copied before
  int appended;         // those that grow in place: no new copy of them is made
  std::uint64_t added;  // bytes, to each file
  bool repeats;         // writes each file more than once: in the end beside what all have grown to
  bool registers;       // sets lines of the system registry and of AppleVolumes.conf
};

// Whether there is room for all that the change will write, its copies included.
bool has_room(const ChangeSize& change);

// Copies of the files of a mask.
struct Copies {
  int whole;  // the files that can be restored from theirs
  bool room;  // false: one is not whole for want of room
};

// Takes the copies. One that did not become whole is removed.
Copies take_copies(int mask);

// Puts the files back from their copies. A file without one stays as it is.
void restore_copies(int mask);

}  // namespace filesharing

#endif
