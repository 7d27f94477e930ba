// A line of /etc/group, group(5): name, password, gid and members, separated by ":".
#ifndef FILESHARING_GROUPS_GROUP_LINE_H
#define FILESHARING_GROUPS_GROUP_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace filesharing {

constexpr std::int32_t kFirstCreatedGid = 2000;
constexpr std::int32_t kCreatedGids = 255;

// Whether a gid is one of those that groups made here have or have had.
constexpr bool is_created_gid(std::int32_t gid) {
  return gid >= kFirstCreatedGid && gid < kFirstCreatedGid + kCreatedGids;
}

struct GroupLine {
  std::string_view name;  // the whole line without a colon
  std::string_view rest;  // what follows the name, from its colon on
  std::optional<std::int32_t> gid;
  bool has_members_field;
};

GroupLine parse_group_line(std::string_view line);

// The line of a new group, without members.
std::string new_group_line(std::string_view name, std::int32_t gid);

}  // namespace filesharing

#endif
