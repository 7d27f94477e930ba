// Which shares a group is on, and whether everyone is on a volume's public share.
#include "conf/heap_list.h"
#include "conf/result.h"
#include "conf/share_collector.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"
#include "shares/share_names.h"

namespace filesharing {
namespace {

Result collect_shares(GroupShareInfo& record) {
  ShareInfo* all = nullptr;
  STEP(GetAllShare(&all));
  const HeapList<ShareInfo> owner(FreeShareList, all);
  ShareCollector shares(record);
  for (const ShareInfo* share = all; share != nullptr && !shares.full(); share = share->next) {
    const ShareGroup* group = find_group(share->groups, record.name);
    if (group != nullptr) {
      shares.add(share->name, group->rights);
    }
  }
  shares.hand_over();
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetGroupShareInfo(GroupShareInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  record->name[sizeof record->name - 1] = '\0';
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
