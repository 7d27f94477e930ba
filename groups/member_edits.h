// Changes of the members of groups in /etc/group and /etc/usrgrp.info: the member lists of the
// groups are written anew, every other byte stays.
#ifndef FILESHARING_GROUPS_MEMBER_EDITS_H
#define FILESHARING_GROUPS_MEMBER_EDITS_H

#include "conf/file_rewrite.h"
#include "conf/result.h"
#include "groups/group_lines.h"

namespace filesharing {

enum class MemberAction { kAdd, kRemove };

// Which lines of /etc/group change. The rules differ in the functions for one group and in those
// for several, and are those that the files in use were written by.
enum class ChangedLines {
  // The first line of the group. A carriage return ends a line, too. A line that lacks one of its
  // colons is passed over, and a last line without line feed stays without.
  kFirst,
  // Each line of each group. Only a line feed ends a line of another group. A line that lacks one
  // of its colons is malformed, and a last line without line feed gets one.
  kAll,
};

struct MemberChange {
  MemberAction action;
  ChangedLines lines;
  Names groups;
  Names users;  // become members of each group, behind the others, or are taken out
};

// FSH_OK, also when no line belongs to a group; FSH_CANNOT_OPEN; FSH_NO_TEMPORARY; FSH_MALFORMED: a
// member of more than 40 characters, or a line without its colons; the failure of copy_back.
Result edit_group_file(const MemberChange& change, const CopyBack& copy_back);

// The same in /etc/usrgrp.info, in every line of the groups. A user is added with the quota that
// GetUserInfo knows. FSH_MALFORMED: an item without ":"; besides, the results of GetUserInfo.
Result edit_user_groups(const MemberChange& change, const CopyBack& copy_back);

}  // namespace filesharing

#endif
