// Makes the UPnP AV server follow its settings.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <tuple>

#include "conf/detached.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/shell.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/media.h"
#include "media/folder_reference.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

// Which files of a folder are published, by content type: all, music, pictures, video.
constexpr const char* kPrefixes[] = {"+A|", "+M|", "+P|", "+V|"};

const char* prefix_of(std::int32_t content_type) {
  const bool known = content_type >= 0 && content_type < std::ssize(kPrefixes);
  return kPrefixes[known ? content_type : 0];
}

// The folders as the server's configuration names them, and a share that the database may lie on.
struct Content {
  std::string folders;
  std::optional<ShareInfo> database_share;
};

bool can_hold_database(const ShareInfo& share) {
  std::string folder = format("/harddisk/volume_%d/data%s", share.volume, share.path);
  if (folder.ends_with('/')) {
    folder.pop_back();
  }
  return IsFolderReadonly(folder.c_str()) == 0;
}

void add_folder(Content& content, std::int32_t content_type, const ShareInfo& share,
                const FolderReference& reference) {
  if (!content.folders.empty()) {
    content.folders += ',';
  }
  // The reference's folder brings the slash between share and folder along.
  content.folders += format("%s/harddisk/volume_%d/data%s%s", prefix_of(content_type), share.volume,
                            share.path, reference.folder.c_str());
}

Content collect_content(const UPnPAVSettings& settings) {
  Content content;
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    FolderReference reference;
    ShareInfo share{};
    if (settings.folder_used[slot] == 0 ||
        !find_folder(std::string(field_text(settings.folder_path[slot])), reference, share)) {
      continue;
    }
    if (!content.database_share && can_hold_database(share)) {
      content.database_share = share;
    }
    add_folder(content, settings.content_type[slot], share, reference);
  }
  return content;
}

void set_key(const char* key, const std::string& value) {
  // A server with an old key serves on, and the page has been answered by the stop.
  std::ignore = PRO_SetStr(nullptr, key, value.c_str(), paths::kMedia);
}

void write_configuration(const UPnPAVSettings& settings, const Content& content) {
  if (!content.folders.empty()) {
    set_key("contentdir", content.folders);
  }
  set_key("friendlyname", settings.name);
  set_key("scan_interval",
          settings.content_scan == -1 ? "-1" : std::to_string(settings.scan_interval));
  set_key("codepage", std::to_string(settings.code_page));
  set_key("serialnumber", settings.version);
  set_key("device_port", std::to_string(settings.port));
}

// On a removable disk the database is built anew each time.
void start_database_on(const std::optional<ShareInfo>& share) {
  const std::string path =
      share ? format("/harddisk/volume_%d/data%s/media.db", share->volume, share->path)
            : paths::kTemporaryMediaDatabase;
  set_key("dbfile", path);
  std::ignore = std::remove(path.c_str());  // a folder with files goes with the command below
  // Kept: the path stands unquoted, so at a blank in it the command takes it for two.
  std::ignore = run_command("/bin/rm -rf %s", path.c_str());
}

void place_database(const Content& content) {
  const DiskPresence disks;
  if (const int volume = disks.first_fixed_volume()) {
    const std::string folder = paths::media_database(volume);
    set_key("dbfile", folder);
    // Kept: it is asked whether the last scan was finished, and nothing follows from it.
    std::ignore = access((folder + "/db_scan.ok").c_str(), F_OK);
  } else if (disks.volume(3) != 0 || disks.volume(4) != 0) {
    start_database_on(content.database_share);
  }
}

Result start_detached() {
  return run_detached({.enters_root = false, .child_signal = ChildSignal::kUntouched}, [] {
    execl(paths::kStartMediaServer, "mediaserver.sh", "start", static_cast<char*>(nullptr));
  });
}

int reset(bool keep_db) {
  UPnPAVSettings settings{};
  if (const int failed = ReadUPnPAVConf(&settings)) {
    return failed;
  }
  StopUPnPDaemon(&settings, keep_db ? 0 : 1);
  sleep(4);
  if (settings.enabled == 0) {
    return 0;
  }
  const Content content = collect_content(settings);
  write_configuration(settings, content);
  place_database(content);
  sleep(4);
  return static_cast<int>(start_detached());
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ResetUPnPAV(int keep_db) {
  return guarded(-1, [&] { return reset(keep_db != 0); });
}
