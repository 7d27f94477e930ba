// The FTP service, vsftpd, which inetd starts: its settings and the lines that it has in the files
// of the system.
#include <cstdint>
#include <tuple>

#include "conf/line_rules.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/services.h"

namespace filesharing {
namespace {

// ---- Settings

constexpr int kLanguageLimit = 16;
constexpr std::int32_t kDefaultLanguage = 437;

std::vector<SettingField> fields_of(FtpSettings& settings) {
  return {{"ftp_server", YesNo{settings.enabled}},
          {"ftp_anony", YesNo{settings.anonymous}},
          {"ftp_lang", settings.language},
          {"ftp_port", settings.port},
          {"ftp_data_port", settings.data_port},
          {"ftp_bandwidth", settings.bandwidth},
          {"ftp_ssl", settings.ssl}};
}

std::int32_t port_or_default(std::int32_t port, std::int32_t well_known) {
  return port >= 1024 && port <= 65535 ? port : well_known;
}

int read_ftp(FtpSettings& settings) {
  SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  // A port whose key is missing stays as the caller had it.
  settings = {.enabled = 0,
              .reserved = 0,
              .anonymous = 0,
              .language = 0,
              .port = settings.port,
              .data_port = settings.data_port,
              .ssl = 0,
              .bandwidth = 0};
  const SettingsSection network = file.section("network");
  std::ignore = read_fields(network, fields_of(settings));
  // What follows the number of a language does not count.
  settings.language = to_int(network.text("ftp_lang", kLanguageLimit).value_or(""));
  if (settings.language < 1) {
    settings.language = kDefaultLanguage;
  }
  settings.port = port_or_default(settings.port, 21);
  settings.data_port = port_or_default(settings.data_port, 20);
  file.leave_open();  // Kept: each call costs the process a descriptor.
  return 0;
}

int save_ftp(FtpSettings settings) {
  return save_settings("network", settings_of(fields_of(settings)));
}

// ---- Lines of the system's files

std::string switch_line(const char* key, bool on) {
  return format("%s=%s\n", key, on ? "YES" : "NO");
}

std::string rate_line(const char* key, std::int32_t kilobytes) {
  return format("%s=%llu\n", key, static_cast<unsigned long long>(kilobytes) * 1024);
}

// Kept: lines of other services that hold the mark, "tftp\t\t" for one, become the FTP line too.
std::vector<LineRule> rules_of_services(const FtpSettings& settings) {
  const bool has_port = settings.port != 0;
  return {{.mark = "ftp\t\t", .line = has_port ? format("ftp\t\t%d/tcp\n", settings.port) : ""}};
}

// Kept: every line that mentions ftp is the service's, those of tftp and comments as well.
std::vector<LineRule> rules_of_inetd(const FtpSettings& settings) {
  const char* line = "ftp\tstream\ttcp\tnowait\troot\t/usr/sbin/vsftpd\n";
  return {{.mark = "ftp", .line = settings.enabled != 0 ? line : "", .appended = 1}};
}

// Guests are not on the list of users that vsftpd lets in: with them the list is off.
std::vector<LineRule> rules_of_vsftpd(const FtpSettings& settings, bool lets_guests_in) {
  return {
      {.mark = "ssl_enable", .line = switch_line("ssl_enable", settings.ssl != 0)},
      {.mark = "anonymous_enable",
       .line = switch_line("anonymous_enable", settings.anonymous != 0)},
      {.mark = "userlist_enable", .line = switch_line("userlist_enable", !lets_guests_in)},
      {.mark = "listen_port", .line = format("listen_port=%d\n", settings.port), .appended = 3},
      {.mark = "ftp_data_port",
       .line = format("ftp_data_port=%d\n", settings.data_port),
       .appended = 4},
      {.mark = "anon_max_rate",
       .line = rate_line("anon_max_rate", settings.bandwidth),
       .appended = 1},
      {.mark = "local_max_rate",
       .line = rate_line("local_max_rate", settings.bandwidth),
       .appended = 2},
  };
}

// ---- Applying

// Kept: a longer line of /etc/services is looked at in pieces; a mark across two is not seen.
constexpr std::size_t kServicesPiece = 127;

constexpr RewriteOptions kFirstFile{.place = TemporaryPlace::kTmp};
constexpr RewriteOptions kLaterFile{.place = TemporaryPlace::kTmp, .no_temporary = FSH_CANNOT_OPEN};
constexpr CopyBack kCopyOnce{.forgives_echild = true, .failure = FSH_SERVICE_NOT_APPLIED};
constexpr CopyBack kCopyTwice{.runs = 2, .failure = FSH_SERVICE_NOT_APPLIED};

Result read_guest_access(bool& lets_guests_in) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  const auto value = file.section("network").text("guest_access", 4);
  lets_guests_in = value == "yes";
  return value ? FSH_OK : FSH_GUEST_ACCESS_MISSING;
}

Result apply_ftp() {
  FtpSettings settings{};
  if (ReadFTPConf(&settings) != 0) {
    return FSH_SERVICE_NOT_APPLIED;
  }
  bool guests = false;
  STEP(rewrite_by_rules(paths::kServices, kFirstFile, kCopyOnce, rules_of_services(settings),
                        kServicesPiece));
  STEP(read_guest_access(guests));
  STEP(rewrite_by_rules(paths::kVsftpd, kLaterFile, kCopyOnce, rules_of_vsftpd(settings, guests)));
  STEP(rewrite_by_rules(paths::kInetd, kLaterFile, kCopyTwice, rules_of_inetd(settings)));
  stop_inetd();
  std::ignore = run_command("/bin/killall bftpd 2>/dev/null");  // it need not run
  return start_inetd_detached();
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadFTPConf(FtpSettings* settings) {
  return with_record(settings, read_ftp);
}

int SaveFTPConf(const FtpSettings* settings) {
  return with_record(settings, save_ftp);
}

unsigned ResetFTP(void) {
  return guarded(FSH_SERVICE_NOT_APPLIED, apply_ftp);
}
