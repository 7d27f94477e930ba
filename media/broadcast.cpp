// The music broadcast, ample, which inetd starts: its settings, and making it follow them.
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
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

// ---- Settings

constexpr char kSwitch[] = "music_broad";
constexpr std::int32_t kDefaultPort = 1234;

std::vector<SettingField> fields_of(BroadcastSettings& settings) {
  return {{kSwitch, YesNo{settings.enabled}},
          {"broad_name", settings.name, kServerNameLimit},
          {"broad_path", settings.path},
          {"broad_port", settings.port},
          {"play_method", settings.play_method}};
}

int read_broadcast(BroadcastSettings& settings) {
  settings = {};
  const SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  std::ignore = read_fields(file.section(kMediaSection), fields_of(settings));
  copy_field(settings.name, server_name(file, settings.name, "_MP3"));
  if (settings.port == 0) {
    settings.port = kDefaultPort;
  }
  return 0;
}

int save_broadcast(BroadcastSettings settings) {
  // Kept: the switch is also written as "broad", so that this key appears though nothing reads it.
  return save_switch_first(kMediaSection, "broad", settings_of(fields_of(settings)));
}

// ---- Applying

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

// A daemon with an old key plays on; the page's answer is about the system's files.
void set_key(const char* key, const std::string& value) {
  std::ignore = PRO_SetStr(nullptr, key, value.c_str(), paths::kAmple);
}

Result write_ample_conf(const BroadcastSettings& settings, const PublishedFolder& published) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  set_key("mp3path", path_of(published.share) + '/' + published.folder);
  std::ignore = PRO_SetInt(nullptr, "port", settings.port, paths::kAmple);
  set_key("order", std::string_view(settings.play_method) == "order" ? "true" : "false");
  set_key("servername", settings.name);
  set_key("serveraddress", file.section("network").text("ip_addr", 16).value_or(""));
  return FSH_OK;
}

// A service that is off goes through all steps, too: they take it out of inetd.
Result apply_broadcast() {
  default_child_signal();
  BroadcastSettings settings{};
  if (ReadBroadConf(&settings) != 0) {
    return FSH_FAILED;
  }
  std::ignore = run_command("/bin/killall ample 2>/dev/null");  // it need not run
  sleep(2);
  PublishedFolder published{};
  STEP(find_folder_or_switch_off(settings.path, kSwitch, published));
  STEP(write_ample_conf(settings, published));
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

int ReadBroadConf(BroadcastSettings* settings) {
  return with_record(settings, read_broadcast);
}

int SaveBroadConf(const BroadcastSettings* settings) {
  return with_record(settings, save_broadcast);
}

unsigned ResetBroadcast(void) {
  return guarded(FSH_FAILED, apply_broadcast);
}
