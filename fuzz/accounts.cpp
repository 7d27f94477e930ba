// Lines of the account and group files, and of files that services share. Input: a name, then the
// file.
#include "conf/line_rules.h"
#include "conf/text.h"
#include "fuzz/fuzz_input.h"
#include "groups/group_line.h"
#include "users/account_line.h"
#include "users/user_lists.h"

namespace {

using namespace filesharing;

void parse(const std::string& line) {
  const GroupLine group = parse_group_line(line);
  fuzz::require(std::string(group.name).append(group.rest) == line);
  fuzz::require(!group.has_members_field || group.gid);
  const auto uid = parse_uid(split_at(line, ':').tail);
  fuzz::require(uid.has_value() == group.has_members_field);
  fuzz::require(!uid || uid == group.gid);
}

// Taking entries out makes no line longer, but for the line feed that it may get.
void edit_list(const std::string& name, const std::string& line) {
  const auto added = line_with_entry(line, {name, 7});
  const auto removed = line_with_replaced(line, name, std::nullopt);
  if (removed) fuzz::require(removed->size() <= line.size() + 1);
  if (added) (void)line_with_replaced(*added, name, ListEntry{"renamed", 4294967295U});
}

void apply(const std::string& mark, const std::string& text) {
  const std::vector<LineRule> rules = {{.mark = mark, .line = "new\n", .appended = 1},
                                       {.mark = "#", .at_start = true, .line = ""}};
  const std::string whole = apply_rules(text, rules);
  fuzz::require(whole.find("new\n") != std::string::npos);
  (void)apply_rules(text, rules, 127);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string name = input.take_line();
  const std::string text = input.rest();
  for (std::string_view rest = text; !rest.empty();) {
    const std::string line(take_line(rest));
    parse(line);
    edit_list(name, line);
  }
  apply(name, text);
  return 0;
}
