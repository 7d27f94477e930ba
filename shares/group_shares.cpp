// Which shares a group is on, and whether everyone is on a volume's public share.
#include <cstdlib>
#include <utility>

#include "conf/heap_list.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"
#include "shares/share_names.h"

namespace filesharing {
namespace {

// The shares of a group on their way into a record; freed unless they get there.
class ShareCollector {
 public:
  ShareCollector() = default;
  ShareCollector(const ShareCollector&) = delete;
  ShareCollector& operator=(const ShareCollector&) = delete;
  ~ShareCollector() {
    for (int i = 0; i < count_; ++i) {
      std::free(names_[i]);
    }
    std::free(names_);
  }

  bool full() const { return count_ == FSH_MOST_GROUP_SHARES; }

  void add(const char* name) {
    auto** grown = static_cast<char**>(
        std::realloc(names_, (static_cast<std::size_t>(count_) + 1) * sizeof(char*)));
    if (grown == nullptr) {
      throw std::bad_alloc();
    }
    names_ = grown;
    names_[count_] = duplicate(name);
    ++count_;
  }

  int count() const { return count_; }

  void hand_over(GroupShareInfo& record) {
    record.count = std::exchange(count_, 0);
    record.shares = std::exchange(names_, nullptr);
  }

 private:
  int count_ = 0;
  char** names_ = nullptr;
};

Result collect_shares(GroupShareInfo& record) {
  ShareInfo* all = nullptr;
  if (const Result failed = GetAllShare(&all)) {
    return failed;
  }
  const HeapList<ShareInfo> owner(FreeShareList, all);
  ShareCollector shares;
  for (const ShareInfo* share = all; share != nullptr && !shares.full(); share = share->next) {
    const ShareGroup* group = find_group(share->groups, record.name);
    if (group != nullptr) {
      record.rights[shares.count()] = group->rights;
      shares.add(share->name);
    }
  }
  shares.hand_over(record);
  return FSH_OK;
}

}  // namespace
}  // namespace filesharing

unsigned GetGroupShareInfo(GroupShareInfo* record) {
  using namespace filesharing;
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  record->name[sizeof record->name - 1] = '\0';
  record->count = 0;
  record->shares = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return collect_shares(*record); });
}

int EveryoneInDiskSh(int volume) {
  using namespace filesharing;
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
