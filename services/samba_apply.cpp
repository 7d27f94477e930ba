// Makes Samba follow its settings.
#include <algorithm>
#include <tuple>

#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/services.h"
#include "platform/profile/profile.h"
#include "platform/samba/samba.h"

namespace filesharing {
namespace {

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
  // "enable" would do as well, but the setting is read as four characters.
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

Result apply() {
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

unsigned SetSMB(void) {
  return guarded(FSH_SAMBA_NOT_APPLIED, apply);
}

unsigned ResetGuest(void) {
  return guarded(FSH_GUEST_NOT_SET,
                 [] { return follow("guest_access", FSH_GUEST_NOT_SET, map_user_names); });
}

unsigned ResetPrinter(void) {
  return guarded(FSH_PRINTER_NOT_SET,
                 [] { return follow("printer_icon", FSH_PRINTER_NOT_SET, load_printers); });
}
