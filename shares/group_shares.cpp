// Which shares a group is on, and whether everyone is on a volume's public share.
#include "conf/c_list.h"
#include "conf/names.h"
#include "conf/records.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"

namespace filesharing {
namespace {

Result collect_shares(GroupShareInfo& record) {
  const CList<ShareInfo> all(GetAllShare, FreeShareList);
  STEP(all.result());
  CStrings shares(FSH_MOST_GROUP_SHARES);
  for (const ShareInfo& share : all) {
    const ShareGroup* group = find_group(share.groups, record.name);
    if (group != nullptr && !shares.full()) {
      record.rights[shares.count()] = group->rights;
      shares.add(share.name);
    }
  }
  shares.hand_over(record.count, record.shares);
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetGroupShareInfo(GroupShareInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  record->count = 0;
  record->shares = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return collect_shares(*record); });
}

int EveryoneInDiskSh(int volume) {
  ShareGroupInfo share{};
  return guarded(0, [&] {
    copy_field(share.name, public_share_name(volume));
    if (GetShareGroup(&share) != FSH_OK) {
      return 0;
    }
    const AccessList owner(share.groups);
    return find_group(share.groups, "everyone") != nullptr ? 1 : 0;
  });
}
