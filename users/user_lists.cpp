#include "users/user_lists.h"

#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/text.h"

namespace filesharing {

namespace {

constexpr std::string_view kEveryone = "everyone=";

template <class Edit>
Result rewrite_lists(const CopyBack& copy_back, Edit edit) {
  return rewrite_lines(paths::kUserGroups, {}, copy_back,
                       [&](std::string_view line, FileRewrite& rewrite) {
                         const std::optional<std::string> edited = edit(line);
                         rewrite.write(edited.value_or(""));
                         return edited ? FSH_OK : FSH_MALFORMED;
                       });
}

}  // namespace

std::optional<std::string> line_with_entry(std::string_view line, const ListEntry& added) {
  const Halves halves = split_at(line, '=');
  std::string value;
  MemberReader members(halves.tail);
  while (members.next()) {
    append_member(value, members.member().name, members.member().number);
  }
  if (members.malformed()) {
    return std::nullopt;
  }
  append_member(value, added.name, std::to_string(added.quota));
  return std::string(halves.head) + '=' + value + '\n';
}

std::optional<std::string> line_with_replaced(std::string_view line, std::string_view name,
                                              const std::optional<ListEntry>& replacement) {
  if (is_blank_line(line)) {
    return std::string(line);
  }
  const Halves halves = split_at(line, '=');
  if (!halves.found) {
    return "";
  }
  std::string value;
  MemberReader members(halves.tail);
  while (members.next()) {
    if (members.member().name != name) {
      append_member(value, members.member().name, members.member().number);
    } else if (replacement) {
      append_member(value, replacement->name, std::to_string(replacement->quota));
    }
  }
  if (members.malformed()) {
    return std::nullopt;
  }
  return std::string(halves.head) + '=' + value + '\n';
}

Result add_to_everyone(const ListEntry& user, const CopyBack& copy_back) {
  // A file without the line stays as it is: there is no list to add to.
  return rewrite_lists(copy_back, [&](std::string_view line) {
    return line.starts_with(kEveryone) ? line_with_entry(line, user) : std::string(line);
  });
}

Result replace_in_lists(std::string_view name, const std::optional<ListEntry>& replacement,
                        const CopyBack& copy_back) {
  return rewrite_lists(copy_back, [&](std::string_view line) {
    return line_with_replaced(line, name, replacement);
  });
}

}  // namespace filesharing
