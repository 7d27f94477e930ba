#include "users/user_entries.h"

#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/users.h"

namespace filesharing {
namespace {

std::string_view without_blanks(std::string_view name) {
  name = without_leading_blanks(name);
  return name.substr(0, name.find_last_not_of(' ') + 1);
}

// Appends a name to the members of a line; an empty one is not a member.
void append_name(std::string& members, std::string_view name) {
  if (!members.empty() && !name.empty()) {
    members += ',';
  }
  members += name;
}

// Nothing for a line without ":". A blank line stays.
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

// Blanks around the members go. A line with fewer than three colons stays.
std::string line_with_renamed_member(std::string_view line, std::string_view old_name,
                                     std::string_view new_name, bool& renamed) {
  constexpr int kFieldsBeforeMembers = 3;
  std::string_view rest = without_line_end(line);
  std::string edited;
  for (int field = 0; field < kFieldsBeforeMembers; ++field) {
    const Halves fields = split_at(rest, ':');
    if (!fields.found) {
      return std::string(line);
    }
    edited.append(fields.head).append(":");
    rest = fields.tail;
  }
  std::string members;
  while (!rest.empty()) {
    const std::string_view member = without_blanks(take_until(rest, ','));
    renamed = renamed || member == old_name;
    append_name(members, member == old_name ? new_name : member);
  }
  return edited + members + '\n';
}

template <class Edit>
Result rewrite_with(const char* path, const CopyBack& copy_back, Edit edit) {
  return rewrite_lines(path, {}, copy_back, [&](std::string_view line, FileRewrite& rewrite) {
    const std::optional<std::string> edited = edit(line);
    rewrite.write(edited.value_or(""));
    return edited ? FSH_OK : FSH_MALFORMED;
  });
}

}  // namespace

Result remove_from_groups(std::string_view name) {
  const CopyBack copy_back{.sync_before = true,
                           .through = Through::kUtilityLibrary,
                           .sync_after = Sync::kAlways,
                           .failure = FSH_MEMBER_NOT_REMOVED};
  return rewrite_with(paths::kGroup, copy_back,
                      [&](std::string_view line) { return line_without_member(line, name); });
}

Result rename_in_groups(std::string_view old_name, std::string_view new_name) {
  FileRewrite rewrite(paths::kGroup);
  STEP(rewrite.open());
  bool renamed = false;
  for (LineReader line(rewrite.source()); line.next();) {
    rewrite.write(line_with_renamed_member(line.text(), old_name, new_name, renamed));
  }
  return renamed ? rewrite.commit({.failure = FSH_USER_NOT_UPDATED}) : FSH_OK;
}

std::optional<std::string> line_with_entry(std::string_view line, const ListEntry& added) {
  const Halves list = split_at(line, '=');
  std::string value;
  MemberReader members(list.tail);
  while (members.next()) {
    append_member(value, members.member().name, members.member().number);
  }
  if (members.malformed()) {
    return std::nullopt;
  }
  append_member(value, added.name, std::to_string(added.quota));
  return std::string(list.head) + '=' + value + '\n';
}

std::optional<std::string> line_with_replaced(std::string_view line, std::string_view name,
                                              const std::optional<ListEntry>& replacement) {
  if (is_blank_line(line)) {
    return std::string(line);
  }
  const Halves list = split_at(line, '=');
  if (!list.found) {
    return "";
  }
  std::string value;
  MemberReader members(list.tail);
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
  return std::string(list.head) + '=' + value + '\n';
}

Result add_to_everyone(const ListEntry& user, const CopyBack& copy_back) {
  const std::string prefix = std::string(kEveryone) + '=';
  // A file without the line stays as it is: there is no list to add to.
  return rewrite_with(paths::kUserGroups, copy_back, [&](std::string_view line) {
    return line.starts_with(prefix) ? line_with_entry(line, user) : std::string(line);
  });
}

Result replace_in_lists(std::string_view name, const std::optional<ListEntry>& replacement,
                        const CopyBack& copy_back) {
  return rewrite_with(paths::kUserGroups, copy_back, [&](std::string_view line) {
    return line_with_replaced(line, name, replacement);
  });
}

std::string read_everyone(std::FILE* stream) {
  const std::string value = read_whole_value(kEveryone.data(), stream).value_or("");
  return without_leading_blanks(value).empty() ? "" : value;
}

bool EveryoneReader::next() {
  if (name_too_long_ || !members_.next()) {
    return false;
  }
  name_too_long_ = user().name.size() > kMostNameCharacters;
  return !name_too_long_;
}

void fill_from_everyone(UserInfo& record, std::string_view quota) {
  copy_field(record.password, FSH_PASSWORD_PLACEHOLDER);
  record.quota = to_unsigned(quota);
}

}  // namespace filesharing
