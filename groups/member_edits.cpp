#include "groups/member_edits.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "conf/member_list.h"
#include "conf/paths.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/users.h"

namespace filesharing {
namespace {

// Of a field before the members, its colon included, and of a member.
constexpr std::size_t kMostCharacters = 40;

// How far an addition has come.
struct Progress {
  std::size_t found = 0;  // users who are members, or have been appended
  bool has_written = false;
};

// Takes the text through the first of the stops off the front of rest, at most so many characters.
std::string_view take_through(std::string_view stops, std::string_view& rest,
                              std::size_t most = std::string_view::npos) {
  const std::size_t length = std::min(rest.find_first_of(stops), most - 1) + 1;
  const std::string_view taken = rest.substr(0, length);
  rest.remove_prefix(taken.size());
  return taken;
}

std::string_view without_blanks(std::string_view text) {
  text = without_leading_blanks(text);
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The text of /etc/group, from what it is to what it becomes.
class GroupFileEditor {
 public:
  GroupFileEditor(const MemberChange& change, std::string_view text)
      : change_(change),
        all_lines_(change.lines == ChangedLines::kAll),
        adds_(change.action == MemberAction::kAdd),
        adds_to_one_(adds_ && !all_lines_),
        rest_(text) {}

  Result run() {
    while (!rest_.empty()) {
      STEP(edit_line());
    }
    return FSH_OK;
  }

  const std::string& edited() const { return edited_; }

 private:
  Result edit_line() {
    const std::string_view line = rest_;
    std::string_view field = take_field();
    const bool is_listed = begins_listed_line(field);
    for (int behind_name = 0; is_listed && behind_name < 2 && field.ends_with(':'); ++behind_name) {
      field = take_field();
    }
    const bool has_members = is_listed && field.ends_with(':');
    if (is_listed && !has_members && all_lines_) {
      return FSH_MALFORMED;
    }
    if (!has_members && !field.ends_with('\n') && !field.ends_with('\r')) {
      take_through(all_lines_ ? "\n" : "\r\n", rest_);
    }
    edited_ += line.substr(0, line.size() - rest_.size());
    return has_members ? edit_members() : FSH_OK;
  }

  std::string_view take_field() { return take_through(":\r\n", rest_, kMostCharacters); }

  // A line whose name is empty is no group's, though a caller may list such a name.
  bool begins_listed_line(std::string_view field) const {
    return field.size() > 1 && field.ends_with(':') &&
           holds(change_.groups, field.substr(0, field.size() - 1));
  }

  // What is left of a line are its members, up to a line feed, a carriage return or both.
  Result edit_members() {
    const std::string_view members = rest_.substr(0, rest_.find_first_of("\r\n"));
    STEP(rebuild(members));
    rest_.remove_prefix(members.size());
    if (!rest_.empty() || all_lines_) {
      edited_ += '\n';
    }
    rest_.remove_prefix(rest_.starts_with("\r\n") ? 2 : std::min<std::size_t>(rest_.size(), 1));
    if (!all_lines_) {
      edited_ += rest_;
      rest_ = {};
    }
    return FSH_OK;
  }

  Result rebuild(std::string_view members) {
    of_line_ = {};
    Names absent = change_.users;
    for (Halves items{.found = true, .head = {}, .tail = members}; items.found;) {
      items = split_at(items.tail, ',');
      const std::string_view member = without_blanks(items.head);
      if (member.size() > kMostCharacters) {
        return FSH_MALFORMED;
      }
      if (!member.empty() && (adds_ || !holds(change_.users, member))) {
        mark_found(member, absent);
        write_member(adds_to_one_ ? "" : separator(), member);
      }
      // Kept: an addition to one group keeps the comma behind each member, and so the empty ones.
      if (adds_to_one_ && items.found) {
        edited_ += ',';
      }
    }
    for (auto user = absent.begin(); adds_ && !all_found() && user != absent.end(); ++user) {
      write_member(separator(), *user);
      ++progress().found;
    }
    return FSH_OK;
  }

  void mark_found(std::string_view member, Names& absent) {
    if (!all_found()) {
      const std::size_t found = progress().found + std::erase(absent, member);
      progress().found = std::min(found, change_.users.size());
    }
  }

  void write_member(std::string_view separator_before, std::string_view member) {
    edited_.append(separator_before).append(member);
    progress().has_written = true;
  }

  std::string_view separator() { return progress().has_written ? "," : ""; }
  bool all_found() { return progress().found >= change_.users.size(); }

  // Kept: within one process the progress of the additions to one group goes on from call to call,
  // so that a later call takes users for found who are not, and puts a comma before the first
  // member of an empty group.
  Progress& progress() {
    static Progress of_additions_to_one;
    return adds_to_one_ ? of_additions_to_one : of_line_;
  }

  const MemberChange& change_;
  bool all_lines_;
  bool adds_;
  bool adds_to_one_;
  std::string_view rest_;  // of the text, not edited yet
  std::string edited_;
  Progress of_line_;
};

Result append_user(std::string& list, const char* name) {
  UserInfo user{};
  if (std::strlen(name) >= sizeof user.name) {
    return FSH_USER_UNKNOWN;
  }
  copy_field(user.name, name);
  STEP(GetUserInfo(&user));
  append_member(list, name, std::to_string(user.quota));
  return FSH_OK;
}

Result rebuild_list(std::string_view value, const MemberChange& change, std::string& list) {
  const bool adds = change.action == MemberAction::kAdd;
  MemberReader members(value);
  while (members.next()) {
    if (adds || !holds(change.users, members.member().name)) {
      append_member(list, members.member().name, members.member().number);
    }
  }
  if (members.malformed()) {
    return FSH_MALFORMED;
  }
  for (std::size_t i = 0; adds && i < change.users.size(); ++i) {
    STEP(append_user(list, change.users[i]));
  }
  return FSH_OK;
}

}  // namespace

Result edit_group_file(const MemberChange& change, const CopyBack& copy_back) {
  FileRewrite rewrite(paths::kGroup);
  STEP(rewrite.open());
  const std::string text = read_rest(rewrite.source());
  GroupFileEditor editor(change, text);
  STEP(editor.run());
  rewrite.write(editor.edited());
  return rewrite.commit(copy_back);
}

Result edit_user_groups(const MemberChange& change, const CopyBack& copy_back) {
  return rewrite_lines(paths::kUserGroups, {}, copy_back,
                       [&](std::string_view line, FileRewrite& rewrite) -> Result {
                         const Halves group = split_at(line, '=');
                         if (!group.found || !holds(change.groups, group.head)) {
                           rewrite.write(line);
                           return FSH_OK;
                         }
                         std::string list;
                         STEP(rebuild_list(group.tail, change, list));
                         rewrite.write(std::string(group.head) + '=' + list + '\n');
                         return FSH_OK;
                       });
}

}  // namespace filesharing
