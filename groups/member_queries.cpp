// Which users a group has, and which groups a user is in.
#include <cstdlib>
#include <utility>

#include "conf/heap_list.h"
#include "conf/line_reader.h"
#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/groups.h"

namespace filesharing {
namespace {

constexpr int kMostNames = 255;

// Kept: the block of a member's name has 20 bytes beyond its characters, for callers who lengthen
// the name in place.
constexpr std::size_t kMemberSpare = 20 - 1;

// Names on their way into a record; freed unless they get there.
class NameCollector {
 public:
  NameCollector() = default;
  NameCollector(const NameCollector&) = delete;
  NameCollector& operator=(const NameCollector&) = delete;
  ~NameCollector() { FreeGroupUserInfo(&names_); }

  // Makes the array for the names, once. False without memory for it.
  [[nodiscard]] bool has_room() {
    if (names_.list == nullptr) {
      names_.list = static_cast<char**>(std::calloc(kMostNames, sizeof(char*)));
    }
    return names_.list != nullptr;
  }

  bool full() const { return names_.count == kMostNames; }

  // Nothing that follows is looked at any more.
  void end() { ended_ = true; }
  bool ended() const { return ended_; }

  void add(std::string_view name, std::size_t spare = 0) {
    names_.list[names_.count] = duplicate(name, spare);
    ++names_.count;
  }

  void hand_over(GroupUserInfo& record) {
    record.count = std::exchange(names_.count, 0);
    record.list = std::exchange(names_.list, nullptr);
  }

 private:
  GroupUserInfo names_{};
  bool ended_ = false;
};

Result collect_members(std::string_view value, GroupUserInfo& group) {
  NameCollector names;
  MemberReader members(value);
  while (!names.full() && members.next()) {
    if (!names.has_room()) {
      return FSH_OK;  // Kept: without memory for the array the record stays as it was
    }
    names.add(members.member().name, kMemberSpare);
  }
  if (members.malformed()) {
    return FSH_MALFORMED;
  }
  names.hand_over(group);
  return FSH_OK;
}

Result read_members(GroupUserInfo& group) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  const std::string prefix = std::string(group.name) + '=';
  for (LineReader line(stream.get()); line.next();) {
    if (line.text().starts_with(prefix)) {
      return collect_members(line.text().substr(prefix.size()), group);
    }
  }
  NameCollector().hand_over(group);
  return FSH_OK;
}

// Adds the group of a line for each of its members that is the user, until the names are full.
Result collect_group(std::string_view line, std::string_view user, NameCollector& groups) {
  const Halves group = split_at(line, '=');
  if (is_blank_line(line) || group.head.empty()) {
    return FSH_OK;
  }
  MemberReader members(group.tail);
  while (members.next()) {
    if (members.member().name != user) {
      continue;
    }
    if (groups.full()) {
      groups.end();
      return FSH_OK;
    }
    if (!groups.has_room()) {
      return FSH_NO_MEMORY;
    }
    groups.add(group.head);
  }
  return members.malformed() ? FSH_MALFORMED : FSH_OK;
}

Result read_groups(GroupUserInfo& user) {
  const Stream stream = open_stream(paths::kUserGroups, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  NameCollector groups;
  for (LineReader line(stream.get()); !groups.ended() && line.next();) {
    if (const Result failed = collect_group(line.text(), user.name, groups)) {
      return failed;
    }
  }
  groups.hand_over(user);
  return FSH_OK;
}

using ReadNames = Result (*)(GroupUserInfo& record);

Result read_into(GroupUserInfo* record, ReadNames read) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  record->name[sizeof record->name - 1] = '\0';
  return guarded(FSH_NO_MEMORY, [&] { return read(*record); });
}

}  // namespace
}  // namespace filesharing

unsigned GetGroupUserInfo(GroupUserInfo* record) {
  return filesharing::read_into(record, filesharing::read_members);
}

unsigned GetUserGroupInfo(GroupUserInfo* record) {
  return filesharing::read_into(record, filesharing::read_groups);
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
  using namespace filesharing;
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
