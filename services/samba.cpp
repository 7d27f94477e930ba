// The Samba service: its settings, the checks of what a page enters, and what Samba is told.
#include <arpa/inet.h>

#include <algorithm>
#include <tuple>

#include "conf/guarded_files.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/services.h"
#include "platform/profile/profile.h"
#include "platform/samba/samba.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

// ---- Settings

std::vector<SettingField> fields_of(SambaSettings& settings) {
  return {{"msn_enable", settings.msn_enable, 4}, {"w_d_name", settings.w_d_name},
          {"code_page", settings.code_page},      {"wins_enable", settings.wins_enable},
          {"wins_server", settings.wins_server},  {"printer_name", settings.printer_name}};
}

// Stops at the first key that is missing.
Result read_samba(SambaSettings& settings) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_SAMBA_SETTINGS_UNREADABLE;
  }
  const SettingsSection network = file.section("network");
  for (const SettingField& field : fields_of(settings)) {
    if (!field.read(network)) {
      return FSH_SAMBA_SETTINGS_UNREADABLE;
    }
  }
  return FSH_OK;
}

Result save_samba(SambaSettings settings) {
  std::vector<Setting> items = settings_of(fields_of(settings));
  std::swap(items[0], items[1]);  // new keys stand in this order, the workgroup first
  const int saved = save_settings("network", items);
  return saved == 0 ? FSH_OK : FSH_SAMBA_SETTINGS_NOT_SAVED;
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
  const auto halves = split_at(address, '.');
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

Result check_and_save(SambaSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  STEP(check(*settings));
  return save_samba(*settings);
}

// ---- Applying

// A text that fills its field has no terminator: SMBSetSamba reads the fields by their size.
template <std::size_t N>
void fill(char (&field)[N], std::string_view text) {
  std::copy_n(text.begin(), std::min(text.size(), N), field);
}

int set_global(const char* key, const char* value) {
  return PRO_SetStr("global", key, value, paths::kSmbConf);
}

Result set_samba(const SambaServerParams& params) {
  return SMBSetSamba(&params) == 0 ? FSH_OK : FSH_SAMBA_NOT_APPLIED;
}

void fill_from_settings(SambaServerParams& params, const SambaSettings& settings) {
  fill(params.state, "enable");
  fill(params.workgroup, field_text(settings.w_d_name));
  fill(params.code_page, std::to_string(settings.code_page));
  fill(params.printer_name, field_text(settings.printer_name));
  // The other word for on, "enable", is longer than what is read of the setting.
  if (field_text(settings.wins_enable) == "yes") {
    fill(params.wins_server, field_text(settings.wins_server));
  }
}

Result fill_comments(SambaServerParams& params, const SettingsSection& network) {
  const auto server = network.text("disk_server_comment", sizeof params.server_comment);
  const auto printer = network.text("printer_comment", sizeof params.printer_comment);
  if (!server || !printer) {
    return FSH_SAMBA_NOT_APPLIED;
  }
  fill(params.server_comment, *server);
  fill(params.printer_comment, *printer);
  return FSH_OK;
}

Result set_recycle_bin(const SettingsSection& network) {
  const auto recycle = network.text("recycle", 4);
  if (!recycle) {
    return FSH_SAMBA_NOT_APPLIED;
  }
  // Kept: whether this is written does not count; Samba has been set already.
  std::ignore = set_global("vfs object", recycle->starts_with("yes") ? "recycle" : "");
  return FSH_OK;
}

Result enable(const SambaSettings& settings) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_SAMBA_NOT_APPLIED;
  }
  const SettingsSection network = file.section("network");
  SambaServerParams params{};
  fill_from_settings(params, settings);
  STEP(fill_comments(params, network));
  STEP(set_samba(params));
  return set_recycle_bin(network);
}

Result disable() {
  SambaServerParams params{};
  fill(params.state, "disable");
  return set_samba(params);
}

Result apply_samba() {
  SambaSettings settings{};
  if (ReadSambaConf(&settings) != FSH_OK) {
    return FSH_SAMBA_NOT_APPLIED;
  }
  return field_text(settings.msn_enable) == "yes" ? enable(settings) : disable();
}

// A key of smb.conf that follows one setting.
template <class SetFrom>
Result follow(const char* setting, Result failure, SetFrom set_from) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  const auto value = file.section("network").text(setting, 4);
  return value && set_from(*value) == 0 ? FSH_OK : failure;
}

// Kept: with guests let in, the mapping of user names is switched off.
int map_user_names(const std::string& guest_access) {
  return set_global("username map", guest_access == "yes" ? "no" : paths::kSmbUsers);
}

int load_printers(const std::string& printer_icon) {
  return DiskPresence().volume(1) == 1 ? set_global("load printers", printer_icon.c_str()) : 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

void omitIpSpace(char* dst, const char* src, int len) {
  if (dst == nullptr) {
    return;
  }
  for (int i = 0; src != nullptr && i < len && src[i] != '\0'; ++i) {
    if (src[i] != ' ') {
      *dst++ = src[i];
    }
  }
  *dst = '\0';
}

unsigned ReadSambaConf(SambaSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_SAMBA_SETTINGS_UNREADABLE, [&] { return read_samba(*settings); });
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

unsigned SetSMB(void) {
  return guarded(FSH_SAMBA_NOT_APPLIED, apply_samba);
}

unsigned ResetGuest(void) {
  return guarded(FSH_GUEST_NOT_SET,
                 [] { return follow("guest_access", FSH_GUEST_NOT_SET, map_user_names); });
}

unsigned ResetPrinter(void) {
  return guarded(FSH_PRINTER_NOT_SET,
                 [] { return follow("printer_icon", FSH_PRINTER_NOT_SET, load_printers); });
}
