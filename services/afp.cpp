// The AFP service: its settings, the file of its daemon, afpd, and the restart.
#include <cstdarg>
#include <cstring>
#include <tuple>
#include <utility>

#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/services.h"

namespace filesharing {
namespace {

// ---- Settings

// The clients' code page is the same for every Mac that can still be served.
constexpr char kMacCode[] = "\"UTF8-MAC\"";

std::vector<SettingField> fields_of(AfpSettings& settings) {
  return {{"apple_enable", YesNo{settings.enabled}},
          {"apple_anony", YesNo{settings.anonymous}},
          {"apple_name", settings.name},
          {"apple_unixcode", settings.unixcode},
          optional({"apple_maccode", settings.maccode}),
          optional({"apple_tm_sh", settings.tm_share})};
}

Result read_afp(AfpSettings& settings) {
  SettingsFile file;
  AfpSettings found{};
  if (!file.opened() || !read_fields(file.section("network"), fields_of(found))) {
    return FSH_AFP_SETTINGS_UNREADABLE;
  }
  copy_field(found.maccode, kMacCode);
  settings = found;
  file.leave_open();  // Kept: each call that succeeds costs the process a descriptor.
  return FSH_OK;
}

int save_afp(AfpSettings settings) {
  return save_settings("network", settings_of(fields_of(settings)));
}

// ---- The line of afpd.conf

// Each token is followed by a blank, the last one too.
void add_token(std::string& line, std::string_view token) {
  line.append(token).append(" ");
}

void add_code_page(std::string& line, std::string_view option, std::string_view code_page) {
  if (!code_page.empty()) {
    add_token(line, option);
    add_token(line, code_page);
  }
}

std::string afpd_line(const AfpSettings& settings) {
  const bool guests = settings.anonymous != 0;
  const std::string_view name = field_text(settings.name);
  std::string line;
  add_token(line, name.empty() ? "-" : name);
  add_token(line, "-uamlist");
  add_token(line, guests ? "uams_guest.so,uams_dhx.so" : "uams_dhx.so");
  add_code_page(line, "-unixcodepage", field_text(settings.unixcode));
  add_code_page(line, "-maccodepage", field_text(settings.maccode));
  if (guests) {
    add_token(line, "-guestname");
    add_token(line, "\"guest\"");
  }
  return line;
}

Result write_afpd_conf(const AfpSettings& settings) {
  FileRewrite rewrite(paths::kAfpd, {.place = TemporaryPlace::kTmp, .reads_source = false});
  STEP(rewrite.open());
  rewrite.write(afpd_line(settings));
  return rewrite.commit({.runs = 2, .settle_seconds = 2, .failure = FSH_AFP_NOT_SAVED});
}

// ---- The restart

Result restart_afp(const AfpSettings& settings) {
  std::ignore = run_command("/bin/killall afpd >/dev/null 2>&1");  // it need not run
  if (settings.enabled != 0) {
    STEP(SetAFPDConf(settings));
    std::ignore = run_command("/usr/sbin/afpd >/dev/null 2>&1");
  }
  std::ignore = ResetmDNSConf();  // the page has its answer already
  return FSH_OK;
}

Result apply_afp() {
  AfpSettings settings{};
  if (ReadAFPConf(&settings) != FSH_OK) {
    return FSH_AFP_NOT_RESET;
  }
  const Detached options{.sleep_seconds = 5, .caller_resets_child_signal = true};
  // Kept: a background process that fails goes on as a second caller, with the code.
  return run_detached_until_failure(options, [&] { return restart_afp(settings); });
}

// ---- Debug lines, for whoever looks into AFP on a device; nothing in the library writes one.

// Kept: every line names the file, function and line of the first version of debug_afp, which tools
// look for.
constexpr char kDebugPrefix[] = "afp:debug_afp():[23]:";

void append_debug_line(const std::string& message) {
  Stream log = open_stream(paths::kDebugLog, "a+");
  if (log) {
    write_text(log.get(), kDebugPrefix + message + '\n');
    std::ignore = close_written(std::move(log));  // a debug line that is lost is lost
  }
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ReadAFPConf(AfpSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_AFP_SETTINGS_UNREADABLE, [&] { return read_afp(*settings); });
}

int SaveAFPConf(const AfpSettings* settings) {
  constexpr int kNotSaved = FSH_AFP_NOT_SAVED;
  return with_record(settings, save_afp) == 0 ? 0 : kNotSaved;
}

int IsShUsedByTM(const char* share) {
  AfpSettings settings{};
  if (missing(share) || ReadAFPConf(&settings) != FSH_OK || settings.enabled == 0) {
    return 0;
  }
  return std::strcmp(share, settings.tm_share) == 0 ? 1 : 0;
}

unsigned SetAFPDConf(AfpSettings settings) {
  return guarded(FSH_AFP_NOT_SAVED, [&] { return write_afpd_conf(settings); });
}

unsigned ResetAFP(void) {
  return guarded(FSH_AFP_NOT_RESET, apply_afp);
}

void debug_afp(const char* format, ...) {
  if (format == nullptr) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  guarded(0, [&] {
    append_debug_line(format_list(format, arguments));
    return 0;
  });
  va_end(arguments);
}
