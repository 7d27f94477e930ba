#include "conf/guarded_files.h"

#include <tuple>

#include <fcntl.h>
#include <unistd.h>

#include "filesharing/conf.h"

namespace filesharing {

bool take_lock_file(const char* path) {
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    return false;
  }
  std::ignore = close(descriptor);  // the file's existence is the lock
  return true;
}

void release_lock_file(const char* path) {
  std::ignore = unlink(path);  // there may be none
}

}  // namespace filesharing

using namespace filesharing;

unsigned Lock(int mask) {
  for (const GuardedFile& file : kGuardedFiles) {
    if (file.is_in(mask) && !take_lock_file(file.lock)) {
      // Kept: the locks taken so far stay taken, until the next start of the system.
      return file.bit;
    }
  }
  return 0;
}

void Unlock(int mask) {
  for (const GuardedFile& file : kGuardedFiles) {
    if (file.is_in(mask)) {
      release_lock_file(file.lock);
    }
  }
}
