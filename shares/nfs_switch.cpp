// NFS on and off.
#include <tuple>

#include "conf/detached.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/shell.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

bool is_enabled() {
  const SettingsFile settings;
  return settings.opened() && settings.section("network").is_yes("nfs", 4);
}

// Each daemon that is running already says so and ends: no status counts.
void start_daemons() {
  std::ignore = run_command("/sbin/portmap 2>/dev/null");
  std::ignore = run_command("/sbin/nfsd");
  std::ignore = run_command("/sbin/mountd");
  std::ignore = run_command("/sbin/exportfs -a 2>/dev/null");
}

int save_switch(bool on) {
  if (PRO_SetStr("network", "nfs", yes_or_no(on), paths::kSettings) != 0) {
    return -1;
  }
  if (on) {
    const Detached options{.child_signal = ChildSignal::kIgnored, .sleep_seconds = 1};
    return static_cast<int>(run_detached(options, start_daemons));
  }
  // Kept: the daemons go on running, with nothing exported.
  std::ignore = run_command("/sbin/exportfs -au 2>/dev/null");
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ReadNFSConf(unsigned* enabled) {
  if (enabled == nullptr) {
    return -1;
  }
  *enabled = IsNFSEnabled() != 0 ? 1 : 0;
  return 0;
}

int IsNFSEnabled(void) {
  return guarded(0, [] { return is_enabled() ? 1 : 0; });
}

int SaveNFSConf(const unsigned* enabled) {
  if (enabled == nullptr) {
    return -1;
  }
  return guarded(-1, [&] { return save_switch(*enabled != 0); });
}
