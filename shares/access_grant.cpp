// Giving groups access to shares.
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/access_batch.h"
#include "shares/access_list.h"

namespace filesharing {
namespace {

// A group's name twice in an SMB section, with its quotes.
constexpr std::uint64_t kMostEntryBytes = 64;

Result grant(const char* group, const char* share_name, int read_only) {
  ShareGroup added{};
  copy_field(added.name, group);
  added.rights = read_only != 0 ? FSH_READ_ONLY : FSH_READ_WRITE;

  ShareGroupInfo access{};
  copy_field(access.name, share_name);
  STEP(GetShareGroup(&access));
  AccessList groups(access.groups);
  if (find_group(groups.head(), group) != nullptr) {
    return FSH_ACCESS_EXISTS;
  }
  groups.append() = added;
  ShareInfo share{};
  copy_field(share.name, share_name);
  STEP(GetShareInfo(&share));
  share.groups = groups.head();
  return AddShareWithGroup(&share);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddGroupToShare(const char* group, const char* share, int read_only) {
  if (missing(group) || missing(share)) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return guarded(FSH_NO_MEMORY, [&] { return grant(group, share, read_only); });
}

unsigned AddGroupsToShare(const char* share, const char* const* groups, int count, int read_only) {
  const Batch batch{groups, count};
  if (missing(share) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return change_access(batch, FSH_ADD_ACCESS_BUSY, FSH_SMB_SHARES_NOT_WRITTEN, kMostEntryBytes,
                       [&](const char* group) { return AddGroupToShare(group, share, read_only); });
}

unsigned AddGroupToShares(const char* group, const char* const* shares, int count, int read_only) {
  const Batch batch{shares, count};
  if (missing(group) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  return change_access(batch, FSH_ADD_ACCESS_BUSY, FSH_SMB_SHARES_NOT_WRITTEN, kMostEntryBytes,
                       [&](const char* share) { return AddGroupToShare(group, share, read_only); });
}
