// Listing the shares, and looking one up: of a folder, of a volume, of a group.
#include <cstdlib>
#include <tuple>

#include "conf/c_list.h"
#include "conf/names.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"
#include "shares/share_registry.h"

namespace filesharing {
namespace {

using NameList = CList<ShareNameItem>;
using ShareList = CList<ShareInfo>;

Result list_names(NameList& names) {
  make_removable_registry();
  Result result = FSH_CANNOT_OPEN;
  for (const char* path : kRegistryFiles) {
    RegistryReader line(path);
    result = line.opened() ? FSH_OK : result;
    while (line.next()) {
      if (line.name().size() <= kMostNameCharacters) {
        copy_field(names.append().name, line.name());
      }
    }
  }
  return result;
}

// Whether a line is listed at all.
using Admits = bool (*)(std::string_view line);

bool admits_all(std::string_view) {
  return true;
}

bool is_not_of_a_flash_disk(std::string_view line) {
  for (const char* disk : {"FLASH_1", "FLASH_2", "FLASH_3", "FLASH_4"}) {
    if (line.find(disk) != std::string_view::npos) {
      return false;
    }
  }
  return true;
}

Result list_file(RegistryReader& line, Admits admits, ShareList& shares) {
  while (line.next()) {
    if (!admits(line.line())) {
      continue;
    }
    ShareInfo& share = shares.append();
    copy_field(share.name, line.name());
    if (const Result failed = ShareStringPar(std::string(line.value()).c_str(), &share)) {
      shares.clear();
      return failed;
    }
  }
  return FSH_OK;
}

Result list_shares(Admits admits, ShareList& shares) {
  make_removable_registry();
  RegistryReader fixed(paths::kShares);
  RegistryReader removable(paths::kRemovableShares);
  if (!fixed.opened() && !removable.opened()) {
    return FSH_CANNOT_OPEN;
  }
  // Kept: a malformed line in the first file empties the list and is forgotten, one in the second
  // is the result.
  std::ignore = list_file(fixed, admits, shares);
  return list_file(removable, admits, shares);
}

unsigned list_into(ShareInfo** head, Admits admits) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] {
    ShareList shares(FreeShareList);
    const Result result = list_shares(admits, shares);
    *head = shares.release();
    return result;
  });
}

// ---- Looking a share up by what it is

constexpr int kFirstVolume = 1;
constexpr int kLastVolume = 5;

enum class Search { kFound, kNotFound, kFailed };

// Looks for the first share, in the order of the registry, whose record suits.
template <class Suits>
Search find_share(ShareInfo& share, Suits suits) {
  const CList<ShareNameItem> names(GetShareNameList, FreeShareNameList);
  if (names.result() != FSH_OK) {
    return Search::kFailed;
  }
  const RegistryIndex registry;
  for (const ShareNameItem& name : names) {
    copy_field(share.name, name.name);
    if (!registry.fill(share)) {
      return Search::kFailed;
    }
    if (suits()) {
      return Search::kFound;
    }
  }
  return Search::kNotFound;
}

int is_folder_shared(std::string path, int volume) {
  if (!path.ends_with('/')) {
    path += '/';
  }
  ShareInfo share{};
  switch (find_share(share, [&] { return share.path == path && share.volume == volume; })) {
    case Search::kFound:
      return 1;
    case Search::kNotFound:
      return 0;
    case Search::kFailed:
      break;
  }
  return -1;
}

bool is_public_path(std::string_view path) {
  return equals_ignoring_case(path, "/public/") || equals_ignoring_case(path, "/public");
}

std::string with_escaped_blanks(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    escaped += c == ' ' ? std::string("%20") : std::string(1, c);
  }
  return escaped;
}

char* public_share(int volume) {
  ShareInfo share{};
  if (find_share(share, [&] { return is_public_path(share.path) && share.volume == volume; }) !=
      Search::kFound) {
    return nullptr;
  }
  return duplicate(with_escaped_blanks(share.name));
}

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

unsigned GetShareNameList(ShareNameItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] {
    NameList names(FreeShareNameList);
    const Result result = list_names(names);
    *head = names.release();
    return result;
  });
}

void FreeShareNameList(ShareNameItem* head) {
  free_list(head);
}

unsigned GetNumOfShares(void) {
  const CList<ShareNameItem> names(GetShareNameList, FreeShareNameList);
  return names.result() == FSH_OK ? names.size() : FSH_NO_SHARE_LIST;
}

unsigned GetAllShare(ShareInfo** head) {
  return list_into(head, admits_all);
}

unsigned GetExtShare(ShareInfo** head) {
  return list_into(head, is_not_of_a_flash_disk);
}

void FreeShareList(ShareInfo* head) {
  free_list(head, [](ShareInfo& share) { FreeShGrpList(share.groups); });
}

int dir_shared(const char* path, int volume) {
  if (missing(path)) {
    return -1;
  }
  return guarded(-1, [&] { return is_folder_shared(path, volume); });
}

char* GetPublicSh(int volume) {
  if (volume < kFirstVolume || volume > kLastVolume) {
    return nullptr;
  }
  return guarded<char*>(nullptr, [&] { return public_share(volume); });
}

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
