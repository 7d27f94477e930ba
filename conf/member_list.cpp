#include "conf/member_list.h"

namespace filesharing {

MemberReader::MemberReader(std::string_view value)
    : rest_(without_line_end(without_leading_blanks(value))), more_(!rest_.empty()) {}

bool MemberReader::next() {
  if (!more_) {
    return false;
  }
  const Halves items = split_at(rest_, ',');
  const Halves fields = split_at(items.head, ':');
  rest_ = items.tail;
  more_ = items.found && fields.found;
  malformed_ = !fields.found;
  member_ = {fields.head, fields.tail};
  return fields.found;
}

void append_member(std::string& value, std::string_view name, std::string_view number) {
  if (!value.empty()) {
    value += ',';
  }
  value.append(name).append(":").append(number);
}

}  // namespace filesharing
