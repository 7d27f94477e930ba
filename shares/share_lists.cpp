// Listing the shares: their names, or their records with the access lists.
#include <cstdlib>
#include <tuple>

#include "conf/c_list.h"
#include "conf/names.h"
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
