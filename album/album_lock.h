// The lock of /etc/album_user.conf, which changes wait for.
#ifndef FILESHARING_ALBUM_ALBUM_LOCK_H
#define FILESHARING_ALBUM_ALBUM_LOCK_H

namespace filesharing {

// Tries to take the lock 15 times, 2 seconds apart, and then goes on without it: a page that died
// with the lock must not shut everybody out.
void wait_for_album_lock();

// Removes the lock file, whoever made it.
void release_album_lock();

}  // namespace filesharing

#endif
