// The lists of /etc/usrgrp.info: a line is the name of the list, "=" and its value, members with
// their quotas, "name:quota" joined by ",".
#ifndef FILESHARING_CONF_MEMBER_LIST_H
#define FILESHARING_CONF_MEMBER_LIST_H

#include <cstdio>
#include <string>
#include <string_view>

#include "conf/line_reader.h"
#include "conf/result.h"
#include "conf/text.h"

namespace filesharing {

// What a GroupUserInfo holds at most.
constexpr int kMostNames = 255;

struct Member {
  std::string_view name;
  std::string_view number;  // as it stands in the file
};

// Walks the members one by one, so that what stands behind the last one looked at does not matter:
//
//   MemberReader members(value);
//   while (members.next()) { ... members.member() ... }
//   if (members.malformed()) ...
//
// Blanks before the first member and the line end behind the last do not count; an empty value has
// no members. An item without ":", an empty one included, ends the walk as malformed.
class MemberReader {
 public:
  explicit MemberReader(std::string_view value);

  bool next();
  const Member& member() const { return member_; }
  bool malformed() const { return malformed_; }

 private:
  std::string_view rest_;
  bool more_;
  bool malformed_ = false;
  Member member_;
};

enum class Walk { kOn, kStop };

// Shows visit(list, member) every member of every list of /etc/usrgrp.info, list by list in the
// order of the file, until it answers kStop. Blank lines and lists without a name have no members.
// FSH_OK; FSH_MALFORMED: the walk came to an item without ":".
template <class Visit>
Result walk_members(std::FILE* lists, Visit visit) {
  for (LineReader line(lists); line.next();) {
    const Halves list = split_at(line.text(), '=');
    if (is_blank_line(line.text()) || list.head.empty()) {
      continue;
    }
    MemberReader members(list.tail);
    while (members.next()) {
      if (visit(list.head, members.member().name) == Walk::kStop) {
        return FSH_OK;
      }
    }
    if (members.malformed()) {
      return FSH_MALFORMED;
    }
  }
  return FSH_OK;
}

// Appends a member to a value under construction, behind a comma when it is not the first.
void append_member(std::string& value, std::string_view name, std::string_view number);

}  // namespace filesharing

#endif
