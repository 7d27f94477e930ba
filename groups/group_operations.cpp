// Adding, deleting and renaming groups in all the files that know them.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "conf/c_list.h"
#include "conf/file_copy.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr std::uint64_t kLineBytes = 16;  // of a new group, besides its name
constexpr std::array<const char*, 2> kReserved{kEveryone.data(), kAdministrators.data()};

bool is_reserved(std::string_view name) {
  return std::find(kReserved.begin(), kReserved.end(), name) != kReserved.end();
}

Result set_members(const char* group, const char* members) {
  return static_cast<Result>(PRO_SetStr(nullptr, group, members, paths::kUserGroups));
}

Result add_group(const char* name) {
  return transact({.mask = kGroupFiles,
                   .busy = FSH_GROUP_NOT_ADDED,
                   .no_room = FSH_GROUP_NOT_ADDED,
                   .adds = kLineBytes + std::strlen(name)},
                  [&]() -> Result {
                    STEP(SysActGroup(name, FSH_ADD_GROUP));
                    return set_members(name, "");
                  });
}

// Counts the entries of a group in the access lists of all shares.
Result count_entries(const char* group, int& entries) {
  const CList<ShareInfo> shares(GetAllShare, FreeShareList);
  STEP(shares.result());
  for (const ShareInfo& share : shares) {
    for (const ShareGroup& entry : Nodes(share.groups)) {
      entries += std::strcmp(entry.name, group) == 0 ? 1 : 0;
    }
  }
  return FSH_OK;
}

// Runs change(shares) for the shares of a group, round by round while a record was full: there may
// be more. A round that has changed nothing, as on shares that cannot be written, is the last.
template <class Change>
Result change_shares(const char* group, Change change) {
  for (;;) {
    GroupShareInfo shares{};
    const std::unique_ptr<GroupShareInfo, void (*)(GroupShareInfo*)> owner(&shares,
                                                                           FreeGrpShareInfo);
    copy_field(shares.name, group);
    STEP(GetGroupShareInfo(&shares));
    if (shares.count < FSH_MOST_GROUP_SHARES) {
      return change(shares);
    }
    int before = 0;
    int after = 0;
    STEP(count_entries(group, before));
    STEP(change(shares));
    STEP(count_entries(group, after));
    if (after == before) {
      return FSH_OK;
    }
  }
}

Result remove_from_shares(const char* group) {
  return change_shares(group, [&](const GroupShareInfo& shares) -> Result {
    return shares.count > 0 ? DelGroupFromShares(group, shares.shares, shares.count) : FSH_OK;
  });
}

Result delete_group(const char* name) {
  // Kept: no lock is taken, unlike by the other operations; two pages can delete at once.
  const Result no_room = is_reserved(name) ? FSH_GROUP_RESERVED : FSH_GROUP_NOT_DELETED;
  return transact({.mask = kGroupAndSmbFiles, .no_room = no_room, .locks = false},
                  [&](Transaction& transaction) -> Result {
                    if (is_reserved(name)) {
                      transaction.on_failure = OnFailure::kNothing;
                      return FSH_GROUP_RESERVED;
                    }
                    STEP(SysActGroup(name, FSH_DELETE_GROUP));
                    STEP(DelKeyFromConf(name, paths::kUserGroups));
                    return remove_from_shares(name);
                  });
}

Result delete_all_groups() {
  return transact(
      {.mask = kGroupAndSmbFiles, .busy = FSH_GROUP_NOT_DELETED, .no_room = FSH_GROUP_NOT_DELETED},
      []() -> Result {
        constexpr int kCount = static_cast<int>(kReserved.size());
        STEP(SysDelAllGroup(kReserved.data(), kCount));
        return DelAllGRP(kReserved.data(), kCount, paths::kUserGroups);
      });
}

Result move_members(const char* old_name, const char* new_name, Transaction& transaction) {
  Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    // Kept: the system file stays renamed and the locks stay taken until someone removes them.
    transaction.on_failure = OnFailure::kNothing;
    return FSH_CANNOT_OPEN;
  }
  const auto members = read_whole_value(old_name, stream.get());
  stream.reset();
  if (!members) {
    return FSH_GROUP_NOT_RENAMED;
  }
  STEP(DelKeyFromConf(old_name, paths::kUserGroups));
  return set_members(new_name, members->c_str());
}

Result rename_in_share(const char* share, std::string_view old_name, std::string_view new_name) {
  ShareInfo record{};
  copy_field(record.name, share);
  STEP(GetShareWithGroup(&record));
  const CList<ShareGroup> owner(record.groups, FreeShGrpList);
  for (ShareGroup& group : Nodes(record.groups)) {
    if (group.name == old_name) {
      copy_field(group.name, new_name);
      break;
    }
  }
  return AddShareWithGroup(&record);
}

Result rename_in_shares(const char* old_name, const char* new_name) {
  return change_shares(old_name, [&](const GroupShareInfo& shares) -> Result {
    for (int i = 0; i < shares.count; ++i) {
      STEP(rename_in_share(shares.shares[i], old_name, new_name));
    }
    return FSH_OK;
  });
}

// To each file, at most: a list of shares has the name once a share, an SMB section twice.
std::uint64_t bytes_added(std::string_view old_name, std::string_view new_name) {
  if (new_name.size() <= old_name.size()) {
    return 0;
  }
  const std::string shares = read_file(paths::kShares).value_or("");
  const std::string item = std::string(old_name) + ':';
  std::uint64_t names = 1;
  for (std::size_t at = shares.find(item); at != std::string::npos;
       at = shares.find(item, at + 1)) {
    names += 2;
  }
  return names * (new_name.size() - old_name.size());
}

Result rename_group(const char* old_name, const char* new_name) {
  if (std::strcmp(old_name, new_name) != 0 && ItemExist(new_name, paths::kGroup) == 1) {
    return FSH_GROUP_NOT_RENAMED;
  }
  return transact({.mask = kGroupFiles,
                   .busy = FSH_GROUP_NOT_RENAMED,
                   .no_room = FSH_GROUP_NOT_RENAMED,
                   .adds = bytes_added(old_name, new_name),
                   .unguarded = kShareFiles,
                   .repeats = true,
                   .registers = true},
                  [&](Transaction& transaction) -> Result {
                    STEP(SysRenGroupName(old_name, new_name));
                    STEP(move_members(old_name, new_name, transaction));
                    return rename_in_shares(old_name, new_name);
                  });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddGroup(const char* name) {
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return add_group(name); });
}

unsigned DelGroup(const char* name) {
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return delete_group(name); });
}

unsigned DelAllGroup(void) {
  return guarded(FSH_NO_MEMORY, delete_all_groups);
}

unsigned RenameGroup(const char* old_name, const char* new_name) {
  if (missing(old_name) || missing(new_name)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return rename_group(old_name, new_name); });
}
