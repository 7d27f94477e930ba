#include "users/group_members.h"

#include "conf/text.h"

namespace filesharing {

namespace {

constexpr int kFieldsBeforeMembers = 3;

std::string_view without_blanks(std::string_view name) {
  name = without_leading_blanks(name);
  return name.substr(0, name.find_last_not_of(' ') + 1);
}

// Appends a name to a member list; an empty one is not a member.
void append_name(std::string& list, std::string_view name) {
  if (!list.empty() && !name.empty()) {
    list += ',';
  }
  list += name;
}

}  // namespace

std::optional<std::string> line_without_member(std::string_view line, std::string_view name) {
  if (is_blank_line(line)) {
    return std::string(line);
  }
  const std::size_t colon = line.rfind(':');
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  std::string members;
  for (std::string_view rest = without_line_end(line.substr(colon + 1)); !rest.empty();) {
    const std::string_view member = take_until(rest, ',');
    append_name(members, member == name ? "" : member);
  }
  return std::string(line.substr(0, colon + 1)) + members + '\n';
}

RenamedMember line_with_renamed_member(std::string_view line, std::string_view old_name,
                                       std::string_view new_name) {
  std::string_view rest = without_line_end(line);
  std::size_t colon = 0;
  for (int field = 0; field < kFieldsBeforeMembers; ++field) {
    colon = rest.find(':', field == 0 ? 0 : colon + 1);
    if (colon == std::string_view::npos) {
      return {.line = std::string(line), .renamed = false};
    }
  }
  const std::string head(rest.substr(0, colon + 1));
  rest.remove_prefix(colon + 1);
  std::string members;
  bool renamed = false;
  while (!rest.empty()) {
    const std::string_view member = without_blanks(take_until(rest, ','));
    renamed = renamed || member == old_name;
    append_name(members, member == old_name ? new_name : member);
  }
  return {.line = head + members + '\n', .renamed = renamed};
}

}  // namespace filesharing
