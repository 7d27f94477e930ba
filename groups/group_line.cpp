#include "groups/group_line.h"

#include "conf/text.h"

namespace filesharing {

GroupLine parse_group_line(std::string_view line) {
  const Halves name = split_at(line, ':');
  const Halves password = split_at(name.tail, ':');
  const Halves gid = split_at(password.tail, ':');
  return {.name = name.head,
          .rest = line.substr(name.head.size()),
          .gid = password.found ? std::optional(to_int(gid.head)) : std::nullopt,
          .has_members_field = gid.found};
}

std::string new_group_line(std::string_view name, std::int32_t gid) {
  return std::string(name) + ":x:" + std::to_string(gid) + ":\n";
}

}  // namespace filesharing
