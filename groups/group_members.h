// The members of a group as a record.
#ifndef FILESHARING_GROUPS_GROUP_MEMBERS_H
#define FILESHARING_GROUPS_GROUP_MEMBERS_H

#include <string_view>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// Fills count and list from the value of the group's line, at most 255 members. FSH_OK;
// FSH_MALFORMED: an item among them without ":". Throws std::bad_alloc.
Result fill_members(std::string_view value, GroupUserInfo& group);

}  // namespace filesharing

#endif
