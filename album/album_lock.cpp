#include "album/album_lock.h"

#include <unistd.h>

#include "conf/lock_files.h"
#include "conf/paths.h"

namespace filesharing {

namespace {

constexpr int kAttempts = 15;
constexpr unsigned kSecondsBetween = 2;

}  // namespace

AlbumLock::AlbumLock() {
  for (int attempt = 1; !take_lock_file(paths::kAlbumLock) && attempt < kAttempts; ++attempt) {
    sleep(kSecondsBetween);
  }
}

AlbumLock::~AlbumLock() {
  if (!stays_) {
    release_lock_file(paths::kAlbumLock);
  }
}

}  // namespace filesharing
