#include "conf/lock_files.h"

#include <fcntl.h>
#include <unistd.h>

#include "conf/guarded_files.h"
#include "filesharing/conf.h"

namespace filesharing {

bool take_lock_file(const char* path) {
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    return false;
  }
  static_cast<void>(close(descriptor));  // the file's existence is the lock
  return true;
}

void release_lock_file(const char* path) {
  static_cast<void>(unlink(path));  // there may be none
}

}  // namespace filesharing

unsigned Lock(int mask) {
  using namespace filesharing;
  for (const GuardedFile& file : kGuardedFiles) {
    if (file.is_in(mask) && !take_lock_file(file.lock)) {
      // Kept: the locks taken so far stay taken, until the next start of the system.
      return file.bit;
    }
  }
  return 0;
}

void Unlock(int mask) {
  using namespace filesharing;
  for (const GuardedFile& file : kGuardedFiles) {
    if (file.is_in(mask)) {
      release_lock_file(file.lock);
    }
  }
}
