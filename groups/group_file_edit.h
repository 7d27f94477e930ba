// The edit of member lists in /etc/group: the member field of the lines of some groups is rebuilt,
// every other byte stays.
#ifndef FILESHARING_GROUPS_GROUP_FILE_EDIT_H
#define FILESHARING_GROUPS_GROUP_FILE_EDIT_H

#include "conf/file_rewrite.h"
#include "conf/result.h"
#include "groups/names.h"

namespace filesharing {

enum class MemberAction { kAdd, kRemove };

// How far an addition has come.
struct MemberCounts {
  int found = 0;    // users who are members, or have been appended
  int written = 0;  // members written
};

struct GroupFileEdit {
  Names groups;  // whose lines change
  Names users;   // who become members of each, behind the others, or are taken out
  MemberAction action;

  // Only the first line of a group counts.
  bool first_line_only = false;
  // What ends a line of another group.
  std::string_view line_ends = "\n";
  // A line with the group's name that lacks a colon is malformed, else it is no line of the group.
  bool refuses_short_lines = false;
  // A line at the end of the file gets the line feed that it lacks.
  bool ends_last_line = false;
  // A comma stays behind every member, empty ones too; else empty members go.
  bool keeps_every_comma = false;
  // Counts that go on from line to line and from call to call; null: from 0 for each line.
  MemberCounts* counts = nullptr;

  CopyBack copy_back;
};

// FSH_OK, also when no line belongs to a group; FSH_CANNOT_OPEN; FSH_NO_TEMPORARY; FSH_MALFORMED: a
// member of more than 40 characters, or a short line; the failure of copy_back.
Result edit_group_file(const GroupFileEdit& edit);

}  // namespace filesharing

#endif
