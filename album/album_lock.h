// The lock of /etc/album_user.conf, which changes wait for.
#ifndef FILESHARING_ALBUM_ALBUM_LOCK_H
#define FILESHARING_ALBUM_ALBUM_LOCK_H

namespace filesharing {

// Holds the lock while it is in scope.
class AlbumLock {
 public:
  // Tries to take the lock 15 times, 2 seconds apart, and then goes on without it: a page that died
  // with the lock must not shut everybody out.
  AlbumLock();
  AlbumLock(const AlbumLock&) = delete;
  AlbumLock& operator=(const AlbumLock&) = delete;

  // Removes the lock file, whoever made it.
  ~AlbumLock();

  // Leaves the lock file behind.
  void leave() { stays_ = true; }

 private:
  bool stays_ = false;
};

}  // namespace filesharing

#endif
