// The value of a line of /etc/usrgrp.info: members with their quotas, "name:quota" joined by ",".
#ifndef FILESHARING_CONF_MEMBER_LIST_H
#define FILESHARING_CONF_MEMBER_LIST_H

#include <string>
#include <string_view>

namespace filesharing {

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

// Appends a member to a value under construction, behind a comma when it is not the first.
void append_member(std::string& value, std::string_view name, std::string_view number);

}  // namespace filesharing

#endif
