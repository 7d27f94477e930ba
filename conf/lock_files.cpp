#include "conf/lock_files.h"

#include <fcntl.h>
#include <unistd.h>

#include "filesharing/conf.h"

namespace filesharing {

namespace {

struct LockFile {
  unsigned bit;
  const char* path;
};

// The order in which every process takes the locks, so that no two wait for each other.
constexpr LockFile kLockFiles[] = {
    {FSH_FILE_PASSWORD, "/tmp/pass.lck"},   {FSH_FILE_GROUP, "/tmp/grp.lck"},
    {FSH_FILE_USER, "/tmp/user.lck"},       {FSH_FILE_SHARE, "/tmp/share.lck"},
    {FSH_FILE_SMB, "/tmp/smb.lck"},         {FSH_FILE_SMBPASS, "/tmp/smbpass.lck"},
    {FSH_FILE_WEBPASS, "/tmp/webpass.lck"},
};

bool selects(int mask, unsigned bit) {
  return (static_cast<unsigned>(mask) & bit) != 0;
}

}  // namespace

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
  for (const LockFile& lock : kLockFiles) {
    if (selects(mask, lock.bit) && !take_lock_file(lock.path)) {
      // Kept: the locks taken so far stay taken, until the next start of the system.
      return lock.bit;
    }
  }
  return 0;
}

void Unlock(int mask) {
  using namespace filesharing;
  for (const LockFile& lock : kLockFiles) {
    if (selects(mask, lock.bit)) {
      release_lock_file(lock.path);
    }
  }
}
