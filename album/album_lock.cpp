#include "album/album_lock.h"

#include <unistd.h>

#include "conf/lock_files.h"
#include "conf/paths.h"

namespace filesharing {

namespace {

constexpr int kAttempts = 15;
constexpr unsigned kSecondsBetween = 2;

}  // namespace

void wait_for_album_lock() {
  for (int attempt = 1; !take_lock_file(paths::kAlbumLock) && attempt < kAttempts; ++attempt) {
    sleep(kSecondsBetween);
  }
}

void release_album_lock() {
  release_lock_file(paths::kAlbumLock);
}

}  // namespace filesharing
