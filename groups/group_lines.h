// The lines of groups in /etc/group and /etc/usrgrp.info, and the names that callers list.
#ifndef FILESHARING_GROUPS_GROUP_LINES_H
#define FILESHARING_GROUPS_GROUP_LINES_H

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// The users or groups of an array of the caller's.
using Names = std::vector<const char*>;

inline bool holds(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

// False when the array or one of its names is missing, or when it is empty.
inline bool is_list(const char* const* names, int count) {
  return names != nullptr && count > 0 && std::find(names, names + count, nullptr) == names + count;
}

// The gids that groups made here have or have had.
constexpr std::int32_t kFirstCreatedGid = 2000;
constexpr std::int32_t kCreatedGids = 255;

// A line of /etc/group, group(5): name, password, gid and members, separated by ":".
struct GroupLine {
  std::string_view name;  // the whole line without a colon
  std::string_view rest;  // what follows the name, from its colon on
  std::optional<std::int32_t> gid;
  bool has_members_field;
};

GroupLine parse_group_line(std::string_view line);

// Whether the gid is one of a group made here.
bool is_created(const GroupLine& group);

// Fills count and list with the members in the value of a group's line of /etc/usrgrp.info, at most
// 255. FSH_OK; FSH_MALFORMED: an item among them without ":". Throws std::bad_alloc.
Result fill_members(std::string_view value, GroupUserInfo& group);

}  // namespace filesharing

#endif
