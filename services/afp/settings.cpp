// The AFP service's settings in the settings file.
#include <cstring>

#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/services.h"

namespace filesharing {
namespace {

constexpr int kSwitchLimit = 16;
constexpr int kTextLimit = 64;
constexpr int kShareLimit = 20;

// The clients' code page is the same for every Mac that can still be served.
constexpr char kMacCode[] = "\"UTF8-MAC\"";

Result read(AfpSettings& settings) {
  SettingsFile file;
  if (!file.opened()) {
    return FSH_AFP_SETTINGS_UNREADABLE;
  }
  const SettingsSection network = file.section("network");
  const auto enabled = network.text("apple_enable", kSwitchLimit);
  const auto anonymous = network.text("apple_anony", kSwitchLimit);
  const auto name = network.text("apple_name", kTextLimit);
  const auto unixcode = network.text("apple_unixcode", kTextLimit);
  if (!enabled || !anonymous || !name || !unixcode) {
    return FSH_AFP_SETTINGS_UNREADABLE;
  }
  settings.enabled = enabled->starts_with("yes") ? 1 : 0;
  settings.reserved = 0;
  settings.anonymous = anonymous->starts_with("yes") ? 1 : 0;
  copy_field(settings.name, *name);
  copy_field(settings.unixcode, *unixcode);
  copy_field(settings.maccode, kMacCode);
  copy_field(settings.tm_share, network.text("apple_tm_sh", kShareLimit).value_or(""));
  file.leave_open();  // Kept: each call that succeeds costs the process a descriptor.
  return FSH_OK;
}

int save(const AfpSettings& settings) {
  return save_settings("network", {{"apple_enable", yes_or_no(settings.enabled != 0)},
                                   {"apple_anony", yes_or_no(settings.anonymous != 0)},
                                   {"apple_name", std::string(field_text(settings.name))},
                                   {"apple_unixcode", std::string(field_text(settings.unixcode))},
                                   {"apple_maccode", std::string(field_text(settings.maccode))},
                                   {"apple_tm_sh", std::string(field_text(settings.tm_share))}});
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ReadAFPConf(AfpSettings* settings) {
  if (settings == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_AFP_SETTINGS_UNREADABLE, [&] { return read(*settings); });
}

int SaveAFPConf(const AfpSettings* settings) {
  constexpr int kNotSaved = FSH_AFP_NOT_SAVED;
  return settings != nullptr && guarded(-1, [&] { return save(*settings); }) == 0 ? 0 : kNotSaved;
}

int IsShUsedByTM(const char* share) {
  AfpSettings settings{};
  if (missing(share) || ReadAFPConf(&settings) != FSH_OK || settings.enabled == 0) {
    return 0;
  }
  return std::strcmp(share, settings.tm_share) == 0 ? 1 : 0;
}
