#include "shares/share_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/stream.h"
#include "conf/text.h"

namespace filesharing {
namespace {

constexpr uid_t kOwner = 502;
constexpr gid_t kGroup = 501;
constexpr mode_t kOpenToAll = 0777;

// Kept: opens each folder above the last "/" to all, up to "/harddisk" itself; of a path that does
// not end in "/" not the share's own folder.
void open_folders_to_all(std::string path) {
  for (std::size_t slash = path.rfind('/'); slash != 0 && slash != std::string::npos;
       slash = path.rfind('/')) {
    path.resize(slash);
    // A folder that is not there, or whose owner stays, is not a reason to undo the share.
    std::ignore = chown(path.c_str(), kOwner, kGroup);
    std::ignore = chmod(path.c_str(), kOpenToAll);
  }
}

void make_folder(const std::string& data, std::string_view escaped_path, FolderQuotes quotes) {
  const std::string path(escaped_path);
  if (quotes == FolderQuotes::kPathAlone) {
    std::ignore =
        run_command("/bin/mkdir -m 775 -p %s\"%s\" 2>/dev/null", data.c_str(), path.c_str());
    return;
  }
  const std::string folder = data + '/' + path.substr(path.starts_with('/') ? 1 : 0);
  std::ignore = run_command("/bin/mkdir -m 775 -p \"%s\" 2>/dev/null", folder.c_str());
}

Result make_open_folder(const ShareInfo& share, FolderQuotes quotes) {
  const std::string data = paths::volume_data(share.volume);
  if (!open_folder(data)) {
    return FSH_SHARE_NOT_ADDED;
  }
  const std::string escaped = shell_escaped(share.path);
  make_folder(data, escaped, quotes);
  std::ignore = run_command("/bin/chown %s.%s %s\"%s\" 2>/dev/null", "admin", "everyone",
                            data.c_str(), escaped.c_str());
  // Kept: the walk takes the escaped path, so a folder whose name needed a backslash stays closed.
  open_folders_to_all(data + escaped);
  return FSH_OK;
}

}  // namespace

std::string served_folder(const ShareInfo& share) {
  std::string folder = paths::volume_data(share.volume);
  folder.append(field_text(share.path));
  return folder.ends_with('/') ? folder : folder + '/';
}

Result prepare_share_folder(const ShareInfo& share, FolderQuotes quotes) {
  return guarded(FSH_SHARE_NOT_ADDED, [&] { return make_open_folder(share, quotes); });
}

}  // namespace filesharing
