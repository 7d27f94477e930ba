// Lock files: a lock is taken while its file exists.
#ifndef FILESHARING_CONF_LOCK_FILES_H
#define FILESHARING_CONF_LOCK_FILES_H

namespace filesharing {

// One attempt to create the lock file. False when it exists or can not be made.
[[nodiscard]] bool take_lock_file(const char* path);

void release_lock_file(const char* path);

}  // namespace filesharing

#endif
