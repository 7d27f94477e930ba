// The UPnP AV server: its signals, what its scanner found, and making it follow its settings.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <tuple>
#include <utility>

#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/media.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

// A server with an old key serves on: the result does not count.
void set_key(const char* key, const std::string& value) {
  std::ignore = PRO_SetStr(nullptr, key, value.c_str(), paths::kMedia);
}

// ---- Signals and removals

// The process of a pid file; -1 without the file or a number in it. A number that does not fit must
// not come out as the pid of somebody else.
pid_t read_pid(const char* path) {
  const Stream file = open_stream(path, "r");
  const std::string text = file ? read_rest(file.get()) : "";
  char* end = nullptr;
  const long long pid = std::strtoll(text.c_str(), &end, 10);
  return end != text.c_str() && std::in_range<pid_t>(pid) ? static_cast<pid_t>(pid) : -1;
}

// What kill(2) returns. A pid below 1 would reach whole groups of processes: it is returned
// instead.
int send_signal(const char* pid_file, int number) {
  const pid_t pid = read_pid(pid_file);
  return pid < 1 ? pid : kill(pid, number);
}

bool publishes_removable_share(const UPnPAVSettings& settings) {
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    const auto published = find_folder(settings, slot);
    if (published && is_removable_share(published->share.name)) {
      return true;
    }
  }
  return false;
}

void remove_database() {
  const int volume = DiskPresence().first_fixed_volume();
  if (volume != 0) {
    const std::string folder = paths::media_database(volume);
    unlink((folder + "/media_server.db").c_str());
    unlink((folder + "/db_scan.ok").c_str());
  }
}

void remove_database_of(const UPnPAVSettings& settings, bool remove_db) {
  if (remove_db || publishes_removable_share(settings)) {
    remove_database();
  }
}

void end_daemon() {
  const pid_t pid = read_pid(paths::kMediaServerPid);
  if (pid >= 1) {
    std::ignore = kill(pid, SIGTERM);  // it may have ended by itself
    sleep(4);
  }
}

// The signal makes the server read its file again, changed or not.
void write_port() {
  const SettingsFile file;
  if (file.opened()) {
    set_key("device_port", file.section("network").text("port", 6).value_or("80"));
  }
}

// ---- Applying

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
  std::string folder = path_of(share);
  if (folder.ends_with('/')) {
    folder.pop_back();
  }
  return IsFolderReadonly(folder.c_str()) == 0;
}

Content collect_content(const UPnPAVSettings& settings) {
  Content content;
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    const auto published = find_folder(settings, slot);
    if (!published) {
      continue;
    }
    if (!content.database_share && can_hold_database(published->share)) {
      content.database_share = published->share;
    }
    content.folders += content.folders.empty() ? "" : ",";
    content.folders +=
        prefix_of(settings.content_type[slot]) + path_of(published->share) + published->folder;
  }
  return content;
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
  const std::string path = share ? path_of(*share) + "/media.db" : paths::kTemporaryMediaDatabase;
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

int apply_upnp(bool keep_db) {
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

void StopUPnPDaemon(const UPnPAVSettings* settings, int remove_db) {
  guarded(0, [&] {
    UPnPAVSettings own{};
    if (settings != nullptr) {
      remove_database_of(*settings, remove_db != 0);
    } else if (ReadUPnPAVConf(&own) == 0) {
      remove_database_of(own, remove_db != 0);
    }
    return 0;
  });
  guarded(0, [] {
    end_daemon();
    return 0;
  });
}

int ScanUPnPAVServer(void) {
  return guarded(-1, [] { return send_signal(paths::kMediaScanPid, SIGHUP); });
}

int ReloadUPnPAVServerIP(void) {
  guarded(0, [] {
    write_port();
    return 0;
  });
  return guarded(-1, [] { return send_signal(paths::kMediaServerPid, SIGHUP); });
}

void RemoveDBOKFlag(void) {
  guarded(0, [] {
    const int volume = FirstAvaibleVolume();
    return volume < 0 ? 0 : unlink((paths::media_database(volume) + "/db_scan.ok").c_str());
  });
}

int ResetUPnPAV(int keep_db) {
  return guarded(-1, [&] { return apply_upnp(keep_db != 0); });
}
