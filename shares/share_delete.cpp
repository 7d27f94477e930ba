// Deleting one share, or all.
#include <tuple>

#include "conf/c_list.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/services.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/share_registry.h"

namespace filesharing {
namespace {

constexpr std::size_t kSuffixCharacters = 2;  // "~" and one more

// The name less its suffix, when it has one.
std::string name_on_volume(std::string_view name, const ShareInfo& share) {
  if (share.suffixed != 0 && name.size() >= kSuffixCharacters) {
    name.remove_suffix(kSuffixCharacters);
  }
  return std::string(name);
}

Result leave_volume(const char* name, const ShareInfo& share) {
  // Volume 0 is none. Kept: a volume without a list fails the deletion.
  if (share.volume == 0 || is_removable_share(name)) {
    return FSH_OK;
  }
  return DelKeyFromConf(name_on_volume(name, share).c_str(),
                        paths::volume_shares(share.volume).c_str());
}

Result leave_afp(const ShareInfo& share) {
  if (share.volume == 0) {
    return FSH_OK;
  }
  const std::string_view path = share.path;
  const std::string folder =
      paths::volume_data(share.volume) +
      (path.starts_with('/') ? std::string(path) : '/' + std::string(path) + '/');
  return DelShareFromAFP(('"' + folder + '"').c_str());
}

Result delete_share(const char* name) {
  ShareInfo share{};
  copy_field(share.name, name);
  STEP(GetShareInfo(&share));
  STEP(DelKeyFromConf(name, registry_file(name)));
  STEP(leave_volume(name, share));
  STEP(DelShareFromSMB(name));
  STEP(leave_afp(share));
  if (IsShUsedByTM(name) != 0) {
    std::ignore = ResetmDNSConf();  // the share is gone whether or not it is still advertised
  }
  return FSH_OK;
}

Result delete_all_shares(bool remove_folders) {
  const CList<ShareInfo> shares(GetAllShare, FreeShareList);
  STEP(shares.result());
  for (const ShareInfo& share : shares) {
    // Kept: this share ends the run; the ones after it stay too.
    if (name_on_volume(share.name, share) == "ADMIN") {
      return FSH_OK;
    }
    STEP(DelShare(share.name));
    if (remove_folders) {
      // Kept: the path goes to the shell as it stands: a blank splits it, "/" is the whole volume.
      std::ignore = run_command("/bin/rm -fr /harddisk/volume_%d/data/%s 2>/dev/null", share.volume,
                                share.path);
    }
  }
  return FSH_OK;
}

Result delete_all_sections() {
  const CList<ShareInfo> shares(GetAllShare, FreeShareList);
  STEP(shares.result());
  for (const ShareInfo& share : shares) {
    if (PRO_DelSect(share.name, paths::kSmbConf) != 0) {
      return FSH_SHARE_NOT_DELETED;
    }
  }
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned DelShare(const char* name) {
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(name) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  const TransactionOptions options{.mask = kShareFiles,
                                   .busy = FSH_SHARE_NOT_DELETED,
                                   .no_room = FSH_COPY_BACK_FAILED,
                                   .mirrors = false};
  return transact(options, [&] { return delete_share(name); });
}

unsigned DelAllShare(int remove_folders) {
  return guarded(FSH_NO_MEMORY, [&] { return delete_all_shares(remove_folders != 0); });
}

unsigned DelAllShareFromSMB(void) {
  return guarded(FSH_NO_MEMORY, [] { return delete_all_sections(); });
}
