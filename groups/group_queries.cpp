// Which groups there are, and the records that tell about them.
#include <cstdlib>
#include <memory>
#include <string>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "groups/group_directory.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

// Groups made here, and the two of the system that users may have.
bool is_listed_gid(std::int32_t gid) {
  return gid >= kFirstCreatedGid || gid == 500 || gid == 501;
}

Result read_group_names(GroupNameItem** head) {
  const Stream stream = open_stream(paths::kGroup, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  CList<GroupNameItem> names(FreeGrpNameList);
  for (LineReader line(stream.get()); line.next();) {
    if (is_blank_line(line.text())) {
      continue;
    }
    const GroupLine group = parse_group_line(line.text());
    if (!group.has_members_field) {
      return FSH_MALFORMED;
    }
    if (group.name.size() <= kMostNameCharacters && is_listed_gid(*group.gid)) {
      copy_field(names.append().name, group.name);
    }
  }
  *head = names.release();
  return FSH_OK;
}

std::int32_t find_gid(std::string_view name) {
  const Stream stream = open_stream(paths::kGroup, "r");
  if (!stream) {
    return FSH_GROUP_UNKNOWN;
  }
  for (LineReader line(stream.get()); line.next();) {
    const GroupLine group = parse_group_line(line.text());
    if (group.name == name && group.gid) {
      return *group.gid;
    }
  }
  return FSH_GROUP_UNKNOWN;
}

Result append_group(CList<GroupItem>& groups, GroupDirectory& directory, std::string_view line) {
  GroupItem& item = groups.append();
  const Halves group = split_at(line, '=');
  if (group.head.empty() || group.tail.empty()) {
    return FSH_MALFORMED;
  }
  copy_field(item.name, group.head);
  item.gid = directory.gid(std::string(group.head).c_str());
  item.users = allocate<GroupUserInfo>();
  copy_field(item.users->name, group.head);
  STEP(directory.fill_users(*item.users));
  item.shares = directory.shares(item.name);
  return FSH_OK;
}

Result read_groups(GroupItem** head) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  GroupDirectory directory(stream.get());
  std::rewind(stream.get());
  CList<GroupItem> groups(FreeGrpList);  // Kept: after a failure what was read is lost
  for (LineReader line(stream.get()); line.next();) {
    if (is_blank_line(line.text())) {
      continue;
    }
    STEP(append_group(groups, directory, line.text()));
  }
  *head = groups.release();
  return FSH_OK;
}

GroupShareInfo* shares_of(std::string_view group) {
  auto* record = allocate<GroupShareInfo>();
  copy_field(record->name, group);
  if (GetGroupShareInfo(record) != FSH_OK) {
    return nullptr;  // Kept: the record is lost; a page that asks for it ends soon after
  }
  if (record->count == 0) {
    std::free(record);
    return nullptr;
  }
  return record;
}

void free_strings(char** strings, int count) {
  for (int i = 0; strings != nullptr && i < count; ++i) {
    std::free(strings[i]);
  }
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int GroupExist(const char* name) {
  return ItemExist(name, paths::kGroup);
}

int GetGroupId(const char* name) {
  if (missing(name)) {
    return FSH_GROUP_UNKNOWN;
  }
  return guarded(FSH_GROUP_UNKNOWN, [&] { return find_gid(name); });
}

unsigned GetGrpNameList(GroupNameItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return read_group_names(head); });
}

unsigned GetNumOfGrps(void) {
  const CList<GroupNameItem> names(GetGrpNameList, FreeGrpNameList);
  return names.result() == FSH_OK ? names.size() : FSH_NO_GROUP_LIST;
}

unsigned GetAllGroup(GroupItem** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return read_groups(head); });
}

GroupShareInfo* GetGrpShares(const GroupItem* record) {
  if (record == nullptr || missing(record->name)) {
    return nullptr;
  }
  return guarded(static_cast<GroupShareInfo*>(nullptr),
                 [&] { return shares_of(field_text(record->name)); });
}

void FreeGrpNameList(GroupNameItem* head) {
  free_list(head);
}

void FreeGrpList(GroupItem*) {
  // Kept: nothing is freed; a page that lists the groups ends soon after.
}

void FreeGrpUsers(GroupUserInfo* record) {
  if (record != nullptr) {
    free_strings(record->list, record->count);  // Kept: not the array itself
  }
}

void FreeGrpShareInfo(GroupShareInfo* record) {
  if (record != nullptr) {
    free_strings(record->shares, record->count);
    std::free(record->shares);
  }
}

void FreeShareGrpInfo(ShareGroupInfo* record) {
  if (record != nullptr) {
    free_list(record->groups);
  }
}
