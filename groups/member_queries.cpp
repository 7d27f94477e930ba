// Which users a group has, and which groups a user is in.
#include <cstdlib>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/records.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

Result read_members(GroupUserInfo& group) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  const std::string prefix = std::string(group.name) + '=';
  for (LineReader line(stream.get()); line.next();) {
    if (line.text().starts_with(prefix)) {
      return fill_members(line.text().substr(prefix.size()), group);
    }
  }
  return fill_members("", group);
}

Result read_groups(GroupUserInfo& user) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  CStrings groups(kMostNames);
  const Result result = walk_members(stream.get(), [&](auto group, auto member) {
    if (member != user.name) {
      return Walk::kOn;
    }
    if (groups.full()) {
      return Walk::kStop;
    }
    groups.add(group);
    return Walk::kOn;
  });
  if (result == FSH_OK) {
    groups.hand_over(user.count, user.list);
  }
  return result;
}

using ReadNames = Result (*)(GroupUserInfo& record);

Result read_into(GroupUserInfo* record, ReadNames read) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  return guarded(FSH_NO_MEMORY, [&] { return read(*record); });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned GetGroupUserInfo(GroupUserInfo* record) {
  return read_into(record, read_members);
}

unsigned GetUserGroupInfo(GroupUserInfo* record) {
  return read_into(record, read_groups);
}

void FreeGroupUserInfo(GroupUserInfo* record) {
  if (record == nullptr || record->list == nullptr) {
    return;
  }
  for (int i = 0; i < record->count; ++i) {
    std::free(record->list[i]);
  }
  std::free(record->list);
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
    found = (std::string_view(members.list[i]) == user) ? 1 : found;
  }
  FreeGroupUserInfo(&members);
  return found;
}
