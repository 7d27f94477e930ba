#include "groups/group_lines.h"

#include "conf/c_list.h"
#include "conf/member_list.h"
#include "conf/text.h"

namespace filesharing {
namespace {

// Kept: the block of a member's name has 20 bytes beyond its characters, for callers who lengthen
// the name in place.
constexpr std::size_t kMemberSpare = 20 - 1;

}  // namespace

GroupLine parse_group_line(std::string_view line) {
  const Halves name = split_at(line, ':');
  const Halves password = split_at(name.tail, ':');
  const Halves gid = split_at(password.tail, ':');
  return {.name = name.head,
          .rest = line.substr(name.head.size()),
          .gid = password.found ? std::optional(to_int(gid.head)) : std::nullopt,
          .has_members_field = gid.found};
}

bool is_created(const GroupLine& group) {
  return group.gid && *group.gid >= kFirstCreatedGid &&
         *group.gid < kFirstCreatedGid + kCreatedGids;
}

Result fill_members(std::string_view value, GroupUserInfo& group) {
  CStrings names(kMostNames);
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
  names.hand_over(group.count, group.list);
  return FSH_OK;
}

}  // namespace filesharing
