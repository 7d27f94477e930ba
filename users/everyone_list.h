// The list of "everyone" in /etc/usrgrp.info: every user with their quota.
#ifndef FILESHARING_USERS_EVERYONE_LIST_H
#define FILESHARING_USERS_EVERYONE_LIST_H

#include <cstdio>
#include <string>
#include <string_view>

#include "conf/member_list.h"
#include "filesharing/types.h"

namespace filesharing {

// The value of the list; empty when it is missing or holds blanks alone.
std::string read_everyone(std::FILE* stream);

// Walks the users as MemberReader does; a name that is too long for a user ends the walk as
// malformed, too.
class EveryoneReader {
 public:
  explicit EveryoneReader(std::string_view value) : members_(value) {}

  bool next();
  const Member& user() const { return members_.member(); }
  bool malformed() const { return members_.malformed() || name_too_long_; }

 private:
  MemberReader members_;
  bool name_too_long_ = false;
};

// What a user's record holds because the user is listed with this quota.
void fill_from_list(UserInfo& record, std::string_view quota);

}  // namespace filesharing

#endif
