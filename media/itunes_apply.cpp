// Makes the iTunes server, mt-daapd, follow its settings.
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

#include "conf/line_rules.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/shell.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/folder_reference.h"
#include "media/media_servers.h"

namespace filesharing {
namespace {

// Lines are replaced, never added: what the system image left out stays out.
std::vector<LineRule> rules_of_daemon(const ITunesSettings& settings, const ShareInfo& share,
                                      const std::string& folder) {
  const std::string directory = format("mp3_dir\t\t/harddisk/volume_%d/data%s/%s\n", share.volume,
                                       share.path, folder.c_str());
  return {{.mark = "mp3_dir", .at_start = true, .line = directory},
          {.mark = "port", .at_start = true, .line = "port\t\t3689\n"},
          {.mark = "servername",
           .at_start = true,
           .line = format("servername\t\t%s\n", settings.name)}};
}

Result write_configuration(const ITunesSettings& settings, const ShareInfo& share,
                           const std::string& folder) {
  constexpr RewriteOptions kOptions{.place = TemporaryPlace::kTmp,
                                    .opens_source_first = true,
                                    .no_temporary = FSH_FAILED,
                                    .cannot_open = FSH_FAILED};
  return rewrite_by_rules(paths::kMtDaapd, kOptions, {.failure = FSH_FAILED},
                          rules_of_daemon(settings, share, folder), kLongestLine);
}

// The daemon says itself what it can not do: no status counts.
void start_daemon() {
  std::ignore = chmod(paths::kMtDaapd, 0644);
  unlink(paths::kSongDatabase);  // so that it looks through the folder again
  std::ignore = run_command("/usr/sbin/mt-daapd &>/dev/null");
}

Result reset() {
  ITunesSettings settings{};
  if (ReadiTuneConf(&settings) != 0) {
    return FSH_FAILED;
  }
  std::ignore = run_command("/bin/killall mt-daapd 2>/dev/null");  // it need not run
  sleep(2);
  if (settings.enabled == 0) {
    return FSH_OK;
  }
  FolderReference reference;
  ShareInfo share{};
  STEP(find_folder_or_switch_off(settings.path, "itune", reference, share));
  STEP(write_configuration(settings, share, reference.folder));
  start_daemon();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ResetItune(void) {
  return static_cast<int>(guarded<Result>(FSH_FAILED, reset));
}
