// Dropping what is gone: folders from the users' lists, and the thumbnails of pictures.
#include <fcntl.h>
#include <unistd.h>

#include <optional>
#include <tuple>
#include <utility>

#include "album/album_file.h"
#include "album/album_settings.h"
#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

bool is_there(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

// ---- Folders

// The current folder, which is entered again when this goes out of scope or before. It may be one
// that can be entered and not read.
class SavedFolder {
 public:
  SavedFolder() : descriptor_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
  SavedFolder(const SavedFolder&) = delete;
  SavedFolder& operator=(const SavedFolder&) = delete;
  ~SavedFolder() { enter(); }

  bool saved() const { return descriptor_ >= 0; }
  void enter() {
    if (saved()) {
      std::ignore = fchdir(descriptor_);  // it could be entered a moment ago
      close(std::exchange(descriptor_, -1));
    }
  }

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
  std::string result = paths::volume_data(share->volume) + share->path + folder + sub;
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
  return !entry.has_folder || !is_there(std::string(entry.folder));
}

// The users' folders are relative to the album's, which is the current one.
std::string without_gone_folders(std::string_view text) {
  std::string result;
  for (PieceReader line(text, kLongestAlbumLine); line.next();) {
    if (line.starts_line() && is_gone(line.text())) {
      line.skip_rest_of_line();
    } else {
      result += line.text();
    }
  }
  return result;
}

int prune(const char* sub) {
  AlbumLock lock;
  SavedFolder current;
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
  return lock.end_rewrite(rewrite_text(paths::kAlbumUsers, {}, {}, [&](std::string_view text) {
    std::string result = without_gone_folders(text);
    current.enter();  // before the file is copied back
    return result;
  }));
}

// ---- Thumbnails

// The longer prefix first: it begins with the shorter.
constexpr std::string_view kPrefixes[] = {"Thumbnail_MED_", "Thumbnail_", "Description_"};

// The picture that a file of the thumbnail folder belongs to; empty for any other file.
std::string_view picture_of(std::string_view name) {
  for (const std::string_view prefix : kPrefixes) {
    if (name.starts_with(prefix)) {
      return name.substr(prefix.size());
    }
  }
  return {};
}

int remove_orphans(const std::string& folder) {
  const std::string thumbnails = folder + "/.Thumb_DB";
  const Folder entries = open_folder(thumbnails);
  if (!entries) {
    return 0;
  }
  while (const dirent* entry = readdir(entries.get())) {
    const std::string name = entry->d_name;
    const std::string_view picture = picture_of(name);
    if (!picture.empty() && !is_there(std::string(folder).append("/").append(picture))) {
      unlink(std::string(thumbnails).append("/").append(name).c_str());
    }
  }
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int UpdateAlbumUserConf(const char* sub) {
  return guarded(-1, [&] { return prune(sub == nullptr ? "" : sub); });
}

int CheckAlbumThumbFiles(const char* folder) {
  return folder == nullptr ? 0 : guarded(0, [&] { return remove_orphans(folder); });
}
