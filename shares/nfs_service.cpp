// NFS: on and off, and /etc/exports, exports(5), with every share that everyone may use, for all
// hosts.
#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/access_list.h"

namespace filesharing {
namespace {

// The share's line; empty for one that is not exported.
std::string export_line(const ShareInfo& share) {
  const ShareGroup* everyone = find_group(share.groups, kEveryone);
  if (everyone == nullptr) {
    return {};
  }
  const char* access = everyone->rights == FSH_READ_ONLY ? "ro" : "rw";
  const std::string path(field_text(share.path));
  // Kept: a blank in the path stands as it is; exportfs exports the folder that is named before it.
  return format("/harddisk/volume_%d/data%s *(%s,async,all_squash,anonuid=501,anongid=501)\n",
                share.volume, path.c_str(), access);
}

Result write_exports(const ShareInfo* shares) {
  FileRewrite rewrite(paths::kExports, {.place = TemporaryPlace::kTmp, .reads_source = false});
  STEP(rewrite.open());
  for (const ShareInfo& share : Nodes(shares)) {
    rewrite.write(export_line(share));
  }
  return rewrite.commit({.sync_before = true, .forgives_echild = true, .failure = FSH_FAILED});
}

// Kept: whether NFS is on or off.
Result update_exports(const ShareInfo* shares) {
  STEP(write_exports(shares));
  std::ignore = run_command("/sbin/exportfs -r 2>/dev/null");  // NFS may not be running
  return FSH_OK;
}

Result update_from_registry() {
  const CList<ShareInfo> shares(GetAllShare, FreeShareList);
  return shares.empty() ? FSH_FAILED : update_exports(shares.head());
}

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

unsigned UpdateNFSConf(const ShareInfo* list) {
  return guarded(FSH_FAILED,
                 [&] { return list == nullptr ? update_from_registry() : update_exports(list); });
}

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
