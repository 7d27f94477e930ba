/* Groups and membership.
 *
 * A group is a line of /etc/group, group(5), and a line of /etc/usrgrp.info: the group's name, "=",
 * and its members with their quotas, "name:quota" joined by ",". Groups made here have gids from
 * 2000 up. The conventions of types.h apply.
 */
#ifndef FILESHARING_GROUPS_H
#define FILESHARING_GROUPS_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Membership: queries; they take no lock ------------------------------------------------- */

/* The users of the group record->name, from the first line of /etc/usrgrp.info for it: at most 255,
 * and whatever follows them is not looked at. No such line, or no members: count 0 and list null.
 * FreeGroupUserInfo frees the contents.
 * 0; FSH_ARGUMENT (20): the record or its name is missing; FSH_CANNOT_OPEN (21); FSH_NO_MEMORY
 * (23); FSH_MALFORMED (24): an item without ":". */
FSH_API unsigned GetGroupUserInfo(GroupUserInfo* record);

/* The groups of the user record->name, in the order of /etc/usrgrp.info: at most 255.
 * FreeUserGroupInfo frees the contents. Results as GetGroupUserInfo. */
FSH_API unsigned GetUserGroupInfo(GroupUserInfo* record);

/* Free the strings of the list and the list, not the record. */
FSH_API void FreeGroupUserInfo(GroupUserInfo* record);
FSH_API void FreeUserGroupInfo(GroupUserInfo* record);

/* 1 when user is a member of group, in this letter case; else 0. */
FSH_API int UserInGroup(const char* user, const char* group);

FSH_END_DECLS

#endif
