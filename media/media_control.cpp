// Stopping the media servers whose folders go away with a volume or a share, and starting them
// again.
#include <unistd.h>

#include <cstring>
#include <tuple>

#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr unsigned kITunes = 1;
constexpr unsigned kBroadcast = 4;
constexpr unsigned kUPnP = 8;

constexpr int kPathLimit = 312;

// What goes away: a volume, or the shares of it whose names begin with a prefix.
struct Removal {
  int volume;
  const char* share_prefix;  // null for the whole volume

  // Kept: on volume 1 the prefix does not count.
  bool takes(const ShareInfo& share) const {
    return share.volume == volume &&
           (volume == 1 || share_prefix == nullptr ||
            std::strncmp(share.name, share_prefix, std::strlen(share_prefix)) == 0);
  }
};

// Which servers are to be started again, and which are off now. A server whose folder was gone
// before is off for good.
struct Stopped {
  unsigned restart = 0;
  unsigned off = 0;
};

struct FolderServer {
  unsigned bit;
  const char* switch_key;
  const char* path_key;
  const char* kill;
};

constexpr FolderServer kFolderServers[] = {
    {kITunes, "itune", "itune_path", "/bin/killall mt-daapd 2>/dev/null"},
    {kBroadcast, "music_broad", "broad_path", "/bin/killall ample 2>/dev/null"},
};

void stop(const FolderServer& server, Stopped& stopped) {
  std::ignore = run_command("%s", server.kill);  // it need not run
  stopped.off |= server.bit;
}

void stop_folder_server(const FolderServer& server, const SettingsSection& media,
                        const Removal& removal, Stopped& stopped) {
  if (!media.is_yes(server.switch_key, 4)) {
    return;
  }
  const auto path = media.text(server.path_key, kPathLimit);
  const auto published = path ? find_folder(*path) : std::nullopt;
  if (!published) {
    stop(server, stopped);
  } else if (removal.takes(published->share)) {
    stop(server, stopped);
    stopped.restart |= server.bit;
  }
  sleep(2);
}

// Kept: neither the prefix nor a folder that is gone counts here, and the daemon is stopped once
// for each folder on the volume.
void stop_upnp(const Removal& removal, Stopped& stopped) {
  UPnPAVSettings settings{};
  if (ReadUPnPAVConf(&settings) != 0 || settings.enabled != 1) {
    return;
  }
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    const auto published = find_folder(settings, slot);
    if (published && published->share.volume == removal.volume) {
      StopUPnPDaemon(&settings, 1);
      stopped.off |= kUPnP;
      stopped.restart |= kUPnP;
    }
  }
}

// A failure is not reported: the servers are stopped already.
void write_off(const char* switch_key) {
  std::ignore = PRO_SetStr1(kMediaSection, switch_key, "no", paths::kSettings);
}

void persist_off(unsigned off) {
  for (const FolderServer& server : kFolderServers) {
    if ((off & server.bit) != 0) {
      write_off(server.switch_key);
    }
  }
  if ((off & kUPnP) != 0) {
    write_off("upnp_av");
  }
}

bool stop_folder_servers(const Removal& removal, Stopped& stopped) {
  const SettingsFile file;
  if (!file.opened()) {
    return false;
  }
  for (const FolderServer& server : kFolderServers) {
    stop_folder_server(server, file.section(kMediaSection), removal, stopped);
  }
  return true;
}

unsigned stop_for(const Removal& removal, bool persist) {
  Stopped stopped;
  if (!stop_folder_servers(removal, stopped)) {
    return 0;
  }
  stop_upnp(removal, stopped);
  if (persist) {
    persist_off(stopped.off);
  }
  return stopped.restart;
}

void stop_all(int remove_db) {
  guarded(0, [] {
    std::ignore = run_command("/bin/killall ample 2>/dev/null");
    std::ignore = run_command("/bin/killall mt-daapd 2>/dev/null");
    return 0;
  });
  StopUPnPDaemon(nullptr, remove_db);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned StopMediaProcess(int volume, const char* share_prefix, int persist) {
  return guarded(
      0U, [&] { return stop_for({.volume = volume, .share_prefix = share_prefix}, persist != 0); });
}

unsigned StartMediaProcess(unsigned mask) {
  sleep(6);
  if ((mask & kITunes) != 0) {
    std::ignore = ResetItune();  // the caller hears of UPnP alone
  }
  if ((mask & kBroadcast) != 0) {
    std::ignore = ResetBroadcast();
  }
  return (mask & kUPnP) != 0 ? static_cast<unsigned>(ResetUPnPAV(0)) : 0;
}

void StopAllMedia(void) {
  stop_all(1);
}

void StopAllMedia1(void) {
  stop_all(0);
}
