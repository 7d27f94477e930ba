// The folders that each user of the photo album may see.
#include <functional>

#include "album/album_file.h"
#include "album/album_lock.h"
#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

// Rewrites the file under the album's lock by a change of its text.
int change_folders(const std::function<std::string(std::string_view text)>& changed) {
  AlbumLock lock;
  FileRewrite rewrite(paths::kAlbumUsers);
  if (const Result failed = rewrite.open()) {
    return failed == FSH_NO_TEMPORARY ? 0 : -1;
  }
  rewrite.write(changed(read_rest(rewrite.source())));
  // Kept: the temporary file stays behind a copy that succeeded.
  if (rewrite.commit({.leaves_temporary = true}) != FSH_OK) {
    lock.leave();  // Kept: the lock stays, and the next change waits for it in vain.
    return -1;
  }
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int AddFolderToAlbumUser(const char* name, const char* folder, int right) {
  if (name == nullptr || folder == nullptr) {
    return -1;
  }
  return guarded(-1, [&] {
    return change_folders(
        [&](std::string_view text) { return with_folder(text, name, folder, right); });
  });
}

int DelFolderFromAlbumUser(const char* name, const char* folder) {
  if (name == nullptr || folder == nullptr) {
    return -1;
  }
  return guarded(-1, [&] {
    return change_folders(
        [&](std::string_view text) { return without_folder(text, name, folder); });
  });
}
