#include "groups/group_members.h"

#include "conf/c_list.h"
#include "conf/member_list.h"

namespace filesharing {

namespace {

// Kept: the block of a member's name has 20 bytes beyond its characters, for callers who lengthen
// the name in place.
constexpr std::size_t kMemberSpare = 20 - 1;

}  // namespace

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
