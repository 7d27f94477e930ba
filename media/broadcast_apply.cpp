// Makes the music broadcast, ample, follow its settings; inetd starts it.
#include <tuple>

#include <unistd.h>

#include "conf/inetd.h"
#include "conf/line_rules.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/shell.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "media/folder_reference.h"
#include "media/media_servers.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr RewriteOptions kSystemFile{
    .place = TemporaryPlace::kTmp, .opens_source_first = true, .no_temporary = FSH_CANNOT_OPEN};
constexpr CopyBack kCopyBack{.forgives_echild = true, .failure = FSH_SERVICE_NOT_APPLIED};

// Kept: with the service off its line stays in /etc/services, unlike that of FTP.
std::vector<LineRule> rules_of_services(const BroadcastSettings& settings) {
  if (settings.enabled == 0) {
    return {};
  }
  return {{.mark = "ample",
           .at_start = true,
           .line = format("ample\t%d/tcp\n", settings.port),
           .appended = 1}};
}

std::vector<LineRule> rules_of_inetd(const BroadcastSettings& settings) {
  const char* line = "ample\tstream\ttcp\tnowait\troot\t/usr/sbin/ample\n";
  return {{.mark = "ample", .line = settings.enabled != 0 ? line : "", .appended = 1}};
}

void set_key(const char* key, const std::string& value) {
  // A daemon with an old key plays on; the page's answer is about the system's files.
  std::ignore = PRO_SetStr(nullptr, key, value.c_str(), paths::kAmple);
}

Result write_configuration(const BroadcastSettings& settings, const FolderReference& reference,
                           const ShareInfo& share) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  set_key("mp3path", format("/harddisk/volume_%d/data%s/%s", share.volume, share.path,
                            reference.folder.c_str()));
  std::ignore = PRO_SetInt(nullptr, "port", settings.port, paths::kAmple);
  set_key("order", std::string_view(settings.play_method) == "order" ? "true" : "false");
  set_key("servername", settings.name);
  set_key("serveraddress", file.section("network").text("ip_addr", 16).value_or(""));
  return FSH_OK;
}

// A service that is off goes through all steps, too: they take it out of inetd.
Result reset() {
  default_child_signal();
  BroadcastSettings settings{};
  if (ReadBroadConf(&settings) != 0) {
    return FSH_FAILED;
  }
  std::ignore = run_command("/bin/killall ample 2>/dev/null");  // it need not run
  sleep(2);
  FolderReference reference;
  ShareInfo share{};
  STEP(find_folder_or_switch_off(settings.path, "music_broad", reference, share));
  STEP(write_configuration(settings, reference, share));
  STEP(rewrite_by_rules(paths::kServices, kSystemFile, kCopyBack, rules_of_services(settings),
                        kLongestLine));
  STEP(rewrite_by_rules(paths::kInetd, kSystemFile, kCopyBack, rules_of_inetd(settings),
                        kLongestLine));
  stop_inetd();
  return start_inetd_detached();
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ResetBroadcast(void) {
  return guarded(FSH_FAILED, reset);
}
