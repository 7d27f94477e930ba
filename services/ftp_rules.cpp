#include "services/ftp_rules.h"

#include <cstdint>

#include "conf/text.h"

namespace filesharing {

namespace {

std::string switch_line(const char* key, bool on) {
  return format("%s=%s\n", key, on ? "YES" : "NO");
}

std::string rate_line(const char* key, std::int32_t kilobytes) {
  return format("%s=%llu\n", key, static_cast<unsigned long long>(kilobytes) * 1024);
}

}  // namespace

// Kept: lines of other services that hold the mark, "tftp\t\t" for one, become the FTP line too.
std::vector<LineRule> ftp_rules_of_services(const FtpSettings& settings) {
  const bool has_port = settings.port != 0;
  return {{.mark = "ftp\t\t", .line = has_port ? format("ftp\t\t%d/tcp\n", settings.port) : ""}};
}

// Kept: every line that mentions ftp is the service's, those of tftp and comments as well.
std::vector<LineRule> ftp_rules_of_inetd(const FtpSettings& settings) {
  const char* line = "ftp\tstream\ttcp\tnowait\troot\t/usr/sbin/vsftpd\n";
  return {{.mark = "ftp", .line = settings.enabled != 0 ? line : "", .appended = 1}};
}

std::vector<LineRule> ftp_rules_of_vsftpd(const FtpSettings& settings, bool lets_guests_in) {
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

}  // namespace filesharing
