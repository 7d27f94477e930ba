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

/* ---- Membership ----------------------------------------------------------------------------- */

/* Each of these rewrites the member field of the group's line in /etc/group, group(5), and the
 * group's line in /etc/usrgrp.info, and leaves every other line as it is. A group that a file does
 * not know is passed over. They wait one second after each file.
 * FSH_ARGUMENT (20) for all: a name or the array is missing, or count is 0. */

/* Adds users to a group in /etc/group alone, behind its members; who is one already stays one. For
 * callers that hold the group and the user lock: it takes none, and makes no backup.
 * 0; FSH_CANNOT_OPEN (21); FSH_NO_TEMPORARY (22); FSH_MALFORMED (24): a member of the group has
 * more than 40 characters; FSH_MEMBER_NOT_ADDED (34): copied in vain.
 * One call per process: the count of users that were found goes on from call to call, so that a
 * later call can add fewer than it is asked to, or nobody, and still return 0. */
FSH_API unsigned AddUsersToSysGroup(const char* group, const char* const* users, int count);

/* Add users to a group, and a user to groups, in both files, each with its quota as GetUserInfo
 * tells it. Locks of mask 10; both files are restored after a failure.
 * 0; FSH_ADD_MEMBER_BUSY (31): a lock is taken; FSH_MEMBER_EXISTS (54): one of the users is a
 * member already, nothing has been changed; FSH_MEMBER_NOT_ADDED (34): any other failure.
 * AddUsersToGroup calls AddUsersToSysGroup: one call per process. */
FSH_API unsigned AddUsersToGroup(const char* group, const char* const* users, int count);
FSH_API unsigned AddUserToGroups(const char* user, const char* const* groups, int count);

/* Take users out of a group, and a user out of groups; who is no member is passed over. Locks of
 * mask 10; both files are restored after a failure.
 * 0; FSH_MEMBER_NOT_REMOVED (35): a lock is taken, or any other failure. */
FSH_API unsigned DelUsersFromGroup(const char* group, const char* const* users, int count);
FSH_API unsigned DelUserFromGroups(const char* user, const char* const* groups, int count);

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
