// The iTunes server, mt-daapd: its settings, and making it follow them.
#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

#include "conf/line_rules.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/media_servers.h"

namespace filesharing {
namespace {

constexpr char kSwitch[] = "itune";

std::vector<SettingField> fields_of(ITunesSettings& settings) {
  return {{kSwitch, YesNo{settings.enabled}},
          {"itune_name", settings.name, kServerNameLimit},
          {"itune_path", settings.path}};
}

int read_itunes(ITunesSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  std::ignore = read_fields(file.section(kMediaSection), fields_of(settings));
  copy_field(settings.name, server_name(file, settings.name, "_iTunes"));
  return 0;
}

int save_itunes(ITunesSettings settings) {
  return save_switch_first(kMediaSection, kSwitch, settings_of(fields_of(settings)));
}

// Lines are replaced, never added: what the system image left out stays out.
Result write_mt_daapd_conf(const ITunesSettings& settings, const PublishedFolder& published) {
  constexpr RewriteOptions kOptions{.place = TemporaryPlace::kTmp,
                                    .opens_source_first = true,
                                    .no_temporary = FSH_FAILED,
                                    .cannot_open = FSH_FAILED};
  const std::string folder = path_of(published.share) + '/' + published.folder;
  return rewrite_by_rules(
      paths::kMtDaapd, kOptions, {.failure = FSH_FAILED},
      {{.mark = "mp3_dir", .at_start = true, .line = "mp3_dir\t\t" + folder + '\n'},
       {.mark = "port", .at_start = true, .line = "port\t\t3689\n"},
       {.mark = "servername",
        .at_start = true,
        .line = format("servername\t\t%s\n", settings.name)}},
      kLongestLine);
}

// The daemon says itself what it cannot do: no status counts.
void start_daemon() {
  std::ignore = chmod(paths::kMtDaapd, 0644);
  unlink(paths::kSongDatabase);  // so that it looks through the folder again
  std::ignore = run_command("/usr/sbin/mt-daapd &>/dev/null");
}

Result apply_itunes() {
  ITunesSettings settings{};
  if (ReadiTuneConf(&settings) != 0) {
    return FSH_FAILED;
  }
  std::ignore = run_command("/bin/killall mt-daapd 2>/dev/null");  // it need not run
  sleep(2);
  if (settings.enabled == 0) {
    return FSH_OK;
  }
  PublishedFolder published{};
  STEP(find_folder_or_switch_off(settings.path, kSwitch, published));
  STEP(write_mt_daapd_conf(settings, published));
  start_daemon();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadiTuneConf(ITunesSettings* settings) {
  return with_record(settings, read_itunes);
}

int SaveiTuneConf(const ITunesSettings* settings) {
  return with_record(settings, save_itunes);
}

int ResetItune(void) {
  return static_cast<int>(guarded<Result>(FSH_FAILED, apply_itunes));
}
