// The members of a line of /etc/group, group(5), as text.
#ifndef FILESHARING_USERS_GROUP_MEMBERS_H
#define FILESHARING_USERS_GROUP_MEMBERS_H

#include <optional>
#include <string>
#include <string_view>

namespace filesharing {

// The line without a member; nothing when it has no ":". The members are what stands behind the
// last one. A blank line stays.
std::optional<std::string> line_without_member(std::string_view line, std::string_view name);

struct RenamedMember {
  std::string line;
  bool renamed;
};

// The line with a member under a new name, and without the blanks around the members. A line with
// fewer than three colons stays.
RenamedMember line_with_renamed_member(std::string_view line, std::string_view old_name,
                                       std::string_view new_name);

}  // namespace filesharing

#endif
