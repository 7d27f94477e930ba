// The FTP service's settings in the settings file.
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/services.h"

namespace filesharing {
namespace {

constexpr int kTextLimit = 16;
constexpr std::int32_t kDefaultLanguage = 437;

std::int32_t language_or_default(std::int32_t language) {
  return language < 1 ? kDefaultLanguage : language;
}

std::int32_t port_or_default(std::int32_t port, std::int32_t well_known) {
  return port >= 1024 && port <= 65535 ? port : well_known;
}

void read_fields(const SettingsSection& network, FtpSettings& settings) {
  settings.enabled = network.begins_with_yes("ftp_server", kTextLimit) ? 1 : 0;
  settings.reserved = 0;
  settings.anonymous = network.begins_with_yes("ftp_anony", kTextLimit) ? 1 : 0;
  settings.language =
      language_or_default(to_int(network.text("ftp_lang", kTextLimit).value_or("")));
  settings.port = port_or_default(network.number("ftp_port").value_or(settings.port), 21);
  settings.data_port =
      port_or_default(network.number("ftp_data_port").value_or(settings.data_port), 20);
  settings.ssl = network.number("ftp_ssl").value_or(0);
  settings.bandwidth = network.number("ftp_bandwidth").value_or(0);
}

int read(FtpSettings& settings) {
  SettingsFile file;
  if (!file.opened()) {
    return -1;
  }
  read_fields(file.section("network"), settings);
  file.leave_open();  // Kept: each call costs the process a descriptor.
  return 0;
}

int save(const FtpSettings& settings) {
  return save_settings("network", {{"ftp_server", yes_or_no(settings.enabled != 0)},
                                   {"ftp_anony", yes_or_no(settings.anonymous != 0)},
                                   {"ftp_lang", std::to_string(settings.language)},
                                   {"ftp_port", std::to_string(settings.port)},
                                   {"ftp_data_port", std::to_string(settings.data_port)},
                                   {"ftp_bandwidth", std::to_string(settings.bandwidth)},
                                   {"ftp_ssl", std::to_string(settings.ssl)}});
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadFTPConf(FtpSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return read(*settings); });
}

int SaveFTPConf(const FtpSettings* settings) {
  return settings == nullptr ? -1 : guarded(-1, [&] { return save(*settings); });
}
