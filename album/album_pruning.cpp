// Dropping the folders that are gone from the users' lists.
#include <fcntl.h>
#include <unistd.h>

#include <optional>
#include <tuple>
#include <utility>

#include "album/album_file.h"
#include "album/album_lock.h"
#include "album/album_path.h"
#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

// The current folder, which is entered again when this goes out of scope. It may be one that can be
// entered and not read.
class SavedFolder {
 public:
  SavedFolder() : descriptor_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
  SavedFolder(const SavedFolder&) = delete;
  SavedFolder& operator=(const SavedFolder&) = delete;
  ~SavedFolder() {
    if (saved()) {
      std::ignore = fchdir(descriptor_);  // it could be entered a moment ago
      close(descriptor_);
    }
  }

  bool saved() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

// The folder below which the users' folders lie; nothing without settings, a path or a share.
std::optional<std::string> album_folder(const char* sub) {
  PhotoAlbumConf settings{};
  std::ignore = ReadPhotoAlbumConf(&settings);  // the path is there without the music, too
  const auto path = parse_album_path(settings);
  const auto share = path ? find_album_share(*path) : std::nullopt;
  if (!share) {
    return std::nullopt;
  }
  // Kept: a slash stands before the folder, unlike in the album's link.
  const std::string folder = path->folder.empty() ? "" : '/' + path->folder;
  std::string result =
      format("/harddisk/volume_%d/data%s%s%s", share->volume, share->path, folder.c_str(), sub);
  de_dotdot(result.data());
  result.resize(std::char_traits<char>::length(result.c_str()));
  if (result.ends_with('/')) {
    result.pop_back();
  }
  return result;
}

bool is_gone(std::string_view line) {
  if (!line.starts_with("album=")) {
    return false;
  }
  const FolderLine entry = parse_folder_line(line);
  return !entry.has_folder || access(std::string(entry.folder).c_str(), F_OK) != 0;
}

// In the album's folder, which the users' folders are relative to.
Result write_remaining(FileRewrite& rewrite) {
  STEP(rewrite.open());
  for (PieceReader line(rewrite.source(), kLongestAlbumLine); line.next();) {
    if (line.starts_line() && is_gone(line.text())) {
      line.skip_rest_of_line();
    } else {
      rewrite.write(line.text());
    }
  }
  return FSH_OK;
}

int prune(const char* sub) {
  AlbumLock lock;
  FileRewrite rewrite(paths::kAlbumUsers);
  {
    const SavedFolder current;
    const auto folder = album_folder(sub);
    if (!folder) {
      return 0;
    }
    if (!current.saved()) {
      return -1;  // there would be no way back
    }
    if (chdir(folder->c_str()) != 0) {
      return 0;
    }
    if (const Result failed = write_remaining(rewrite)) {
      return failed == FSH_NO_TEMPORARY ? 0 : -1;
    }
  }
  if (rewrite.commit({}) != FSH_OK) {
    lock.leave();  // Kept: the lock stays, and the next change waits for it in vain.
    return -1;
  }
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int UpdateAlbumUserConf(const char* sub) {
  return guarded(-1, [&] { return prune(sub == nullptr ? "" : sub); });
}
