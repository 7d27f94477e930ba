// Signals to the UPnP AV server and its scanner, and the removal of what the scanner found.
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <tuple>
#include <utility>

#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/media.h"
#include "media/folder_reference.h"
#include "platform/profile/profile.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

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
    FolderReference reference;
    ShareInfo share{};
    if (settings.folder_used[slot] != 0 &&
        find_folder(std::string(field_text(settings.folder_path[slot])), reference, share) &&
        is_removable_share(share.name)) {
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

void write_port() {
  const SettingsFile file;
  if (file.opened()) {
    const std::string port = file.section("network").text("port", 6).value_or("80");
    // The signal makes the server read the file again, changed or not.
    std::ignore = PRO_SetStr(nullptr, "device_port", port.c_str(), paths::kMedia);
  }
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
