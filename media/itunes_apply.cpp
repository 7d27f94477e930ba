// Makes the iTunes server, mt-daapd, follow its settings.
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
Result start_daemon() {
  static_cast<void>(chmod(paths::kMtDaapd, 0644));
  unlink(paths::kSongDatabase);  // so that it looks through the folder again
  static_cast<void>(run_command("/usr/sbin/mt-daapd &>/dev/null"));
  return FSH_OK;
}

int reset() {
  ITunesSettings settings{};
  if (ReadiTuneConf(&settings) != 0) {
    return -1;
  }
  static_cast<void>(run_command("/bin/killall mt-daapd 2>/dev/null"));  // it need not run
  sleep(2);
  if (settings.enabled == 0) {
    return 0;
  }
  FolderReference reference;
  ShareInfo share{};
  return static_cast<int>(in_order(
      [&] { return find_folder_or_switch_off(settings.path, "itune", reference, share); },
      [&] { return write_configuration(settings, share, reference.folder); }, start_daemon));
}

}  // namespace
}  // namespace filesharing

int ResetItune(void) {
  return filesharing::guarded(-1, filesharing::reset);
}
