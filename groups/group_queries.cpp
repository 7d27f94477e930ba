// Looking groups up: their names, gids, members and shares, and the groups of a user.
#include <cstdlib>
#include <cstring>
#include <string>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/member_list.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

// Groups made here, and the two of the system that users may have.
bool is_listed_gid(std::int32_t gid) {
  return gid >= kFirstCreatedGid || gid == 500 || gid == 501;
}

Result list_names(GroupNameItem** head) {
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

GroupShareInfo* find_shares(std::string_view group) {
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

using FillNames = Result (*)(GroupUserInfo& record, std::FILE* lists);

Result fill_users(GroupUserInfo& group, std::FILE* lists) {
  const std::string prefix = std::string(group.name) + '=';
  for (LineReader line(lists); line.next();) {
    if (line.text().starts_with(prefix)) {
      return fill_members(line.text().substr(prefix.size()), group);
    }
  }
  return fill_members("", group);
}

Result fill_groups(GroupUserInfo& user, std::FILE* lists) {
  CStrings groups(kMostNames);
  const Result walked = walk_members(lists, [&](auto group, auto member) {
    if (member != user.name) {
      return Walk::kOn;
    }
    if (groups.full()) {
      return Walk::kStop;
    }
    groups.add(group);
    return Walk::kOn;
  });
  if (walked == FSH_OK) {
    groups.hand_over(user.count, user.list);
  }
  return walked;
}

Result read_record(GroupUserInfo* record, FillNames fill) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  return guarded(FSH_NO_MEMORY, [&] {
    const Stream stream = open_stream(paths::kUserGroups, "r");
    return stream ? fill(*record, stream.get()) : FSH_CANNOT_OPEN;
  });
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
  return guarded(FSH_NO_MEMORY, [&] { return list_names(head); });
}

void FreeGrpNameList(GroupNameItem* head) {
  free_list(head);
}

unsigned GetNumOfGrps(void) {
  const CList<GroupNameItem> names(GetGrpNameList, FreeGrpNameList);
  return names.result() == FSH_OK ? names.size() : FSH_NO_GROUP_LIST;
}

GroupShareInfo* GetGrpShares(const GroupItem* record) {
  if (record == nullptr || missing(record->name)) {
    return nullptr;
  }
  return guarded(static_cast<GroupShareInfo*>(nullptr),
                 [&] { return find_shares(field_text(record->name)); });
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

unsigned GetGroupUserInfo(GroupUserInfo* record) {
  return read_record(record, fill_users);
}

unsigned GetUserGroupInfo(GroupUserInfo* record) {
  return read_record(record, fill_groups);
}

void FreeGrpUsers(GroupUserInfo* record) {
  if (record != nullptr) {
    free_strings(record->list, record->count);  // Kept: not the array itself
  }
}

void FreeGroupUserInfo(GroupUserInfo* record) {
  if (record != nullptr) {
    FreeGrpUsers(record);
    std::free(record->list);
  }
}

void FreeUserGroupInfo(GroupUserInfo* record) {
  FreeGroupUserInfo(record);
}

int UserInGroup(const char* user, const char* group) {
  if (user == nullptr || group == nullptr) {
    return 0;
  }
  GroupUserInfo members{};
  copy_field(members.name, group);
  if (GetGroupUserInfo(&members) != FSH_OK) {
    return 0;
  }
  int found = 0;
  for (int i = 0; i < members.count; ++i) {
    if (std::strcmp(members.list[i], user) == 0) {
      found = 1;
    }
  }
  FreeGroupUserInfo(&members);
  return found;
}
