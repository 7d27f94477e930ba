// Samba's settings in the settings file.
#include <arpa/inet.h>

#include "conf/lock_files.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/services.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

// ---- Reading

template <std::size_t N>
bool read(const SettingsSection& section, const char* key, int limit, char (&field)[N]) {
  const auto value = section.text(key, limit);
  if (value) {
    copy_field(field, *value);
  }
  return value.has_value();
}

bool read(const SettingsSection& section, const char* key, std::int32_t& field) {
  const auto value = section.number(key);
  field = value.value_or(field);
  return value.has_value();
}

Result read_settings(SambaSettings& settings) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_SAMBA_SETTINGS_UNREADABLE;
  }
  const SettingsSection network = file.section("network");
  const bool complete = read(network, "msn_enable", 4, settings.msn_enable) &&
                        read(network, "w_d_name", 16, settings.w_d_name) &&
                        read(network, "code_page", settings.code_page) &&
                        read(network, "wins_enable", 4, settings.wins_enable) &&
                        read(network, "wins_server", 16, settings.wins_server) &&
                        read(network, "printer_name", 20, settings.printer_name);
  return complete ? FSH_OK : FSH_SAMBA_SETTINGS_UNREADABLE;
}

// ---- Checks

constexpr char kNotInWorkgroup[] = "\"/\\[]:;|=.,+*?<>";
constexpr char kNotInPrinterName[] = "/\\[]:;|=., +*?<>'`\"";

Result check_switch(std::string_view value, Result bad) {
  return value == "yes" || value == "no" ? FSH_OK : bad;
}

Result check_name(std::string_view name, const char* forbidden, Result bad, Result multibyte) {
  if (name.find_first_of(forbidden) != std::string_view::npos) {
    return bad;
  }
  return DBCS_AnyDBCSInStr(std::string(name).c_str()) != 0 ? multibyte : FSH_OK;
}

Result check_workgroup(const SambaSettings& settings) {
  const std::string_view name = field_text(settings.w_d_name);
  if (name.empty() && field_text(settings.msn_enable) == "yes") {
    return FSH_WORKGROUP_MISSING;
  }
  return check_name(name, kNotInWorkgroup, FSH_BAD_WORKGROUP, FSH_WORKGROUP_MULTIBYTE);
}

// The address without blanks, and no address instead of 0.0.0.0. Kept: the broadcast address is
// refused as it was typed, before its blanks go; with blanks it is its first number that is bad.
Result tidy_wins_server(SambaSettings& settings) {
  const std::string typed(field_text(settings.wins_server));
  if (typed == "255.255.255.255") {
    return FSH_BAD_WINS_SERVER;
  }
  char tidy[sizeof settings.wins_server];
  omitIpSpace(tidy, typed.c_str(), sizeof tidy - 1);
  const std::string_view address = tidy;
  copy_field(settings.wins_server, address == "0.0.0.0" ? "" : address);
  return FSH_OK;
}

// Networks that no server can be in: this host, loopback, multicast, broadcast. Kept: a text
// without a dot is not looked at, so that inet_aton takes "127" for 0.0.0.127.
bool starts_with_reserved_number(std::string_view address) {
  const Halves halves = split_at(address, '.');
  const std::int32_t first = to_int(halves.head);
  const bool reserved =
      first == 0 || first == 127 || (first >= 224 && first <= 239) || first == 255;
  return halves.found && reserved;
}

Result check_wins_server(const SambaSettings& settings) {
  const std::string address(field_text(settings.wins_server));
  // Kept: "..." counts as empty but is stored as it is.
  if (address.empty() || address == "...") {
    return field_text(settings.wins_enable) == "yes" ? FSH_WINS_SERVER_MISSING : FSH_OK;
  }
  in_addr parsed{};
  const bool valid =
      !starts_with_reserved_number(address) && inet_aton(address.c_str(), &parsed) != 0;
  return valid ? FSH_OK : FSH_BAD_WINS_SERVER;
}

Result check(SambaSettings& settings) {
  STEP(check_switch(field_text(settings.msn_enable), FSH_BAD_SAMBA_SWITCH));
  STEP(check_workgroup(settings));
  STEP(check_switch(field_text(settings.wins_enable), FSH_BAD_WINS_SWITCH));
  STEP(tidy_wins_server(settings));
  STEP(check_wins_server(settings));
  return check_name(field_text(settings.printer_name), kNotInPrinterName, FSH_BAD_PRINTER_NAME,
                    FSH_PRINTER_NAME_MULTIBYTE);
}

// ---- Saving

Result save(const SambaSettings& settings) {
  const int saved =
      save_settings("network", {{"w_d_name", std::string(field_text(settings.w_d_name))},
                                {"msn_enable", std::string(field_text(settings.msn_enable))},
                                {"code_page", std::to_string(settings.code_page)},
                                {"wins_enable", std::string(field_text(settings.wins_enable))},
                                {"wins_server", std::string(field_text(settings.wins_server))},
                                {"printer_name", std::string(field_text(settings.printer_name))}});
  return saved == 0 ? FSH_OK : FSH_SAMBA_SETTINGS_NOT_SAVED;
}

Result check_and_save(SambaSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  STEP(check(*settings));
  return save(*settings);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ReadSambaConf(SambaSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_SAMBA_SETTINGS_UNREADABLE, [&] { return read_settings(*settings); });
}

unsigned SaveSambaConf(SambaSettings* settings) {
  if (!take_lock_file(paths::kSambaLock)) {
    return FSH_SAMBA_SETTINGS_NOT_SAVED;
  }
  const Result result =
      guarded(FSH_SAMBA_SETTINGS_NOT_SAVED, [&] { return check_and_save(settings); });
  release_lock_file(paths::kSambaLock);
  return result;
}
