// The edit of member lists in /etc/usrgrp.info: the lines of some groups are written anew.
#ifndef FILESHARING_GROUPS_USER_GROUPS_EDIT_H
#define FILESHARING_GROUPS_USER_GROUPS_EDIT_H

#include "conf/file_rewrite.h"
#include "conf/result.h"
#include "groups/names.h"

namespace filesharing {

struct UserGroupsEdit {
  Names groups;   // whose lines change
  Names added;    // behind the others, with the quota that GetUserInfo knows
  Names removed;  // every item of theirs
  CopyBack copy_back;
};

// FSH_OK, also when no line belongs to a group; FSH_CANNOT_OPEN; FSH_NO_TEMPORARY; FSH_MALFORMED:
// an item without ":"; the results of GetUserInfo; the failure of copy_back.
Result edit_user_groups(const UserGroupsEdit& edit);

}  // namespace filesharing

#endif
