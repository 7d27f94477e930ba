/* Groups and membership.
 *
 * A group is a line of /etc/group, group(5), and a line of /etc/usrgrp.info: the group's name, "=",
 * and its members with their quotas, "name:quota" joined by ",". Groups made here have gids from
 * 2000 up. The conventions of types.h apply. While SIGCHLD is ignored every change fails: a
 * function that changes one file has done so then, the others are undone.
 */
#ifndef FILESHARING_GROUPS_H
#define FILESHARING_GROUPS_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Groups --------------------------------------------------------------------------------- */

/* Makes a group without members, with the lowest free gid from 2000 to 2252. Locks of mask 10; both
 * files are restored after a failure.
 * 0; FSH_ARGUMENT (20): the name is missing; FSH_GROUP_NOT_ADDED (37): a lock is taken; the results
 * of SysActGroup; FSH_FAILED (-1): /etc/usrgrp.info could not be written; FSH_NO_MEMORY (23). */
FSH_API unsigned AddGroup(const char* name);

/* Deletes a group from both files and from the access lists of all shares. Takes no lock for the
 * group files; the files of mask 26 are restored after a failure. /etc/share.info is not: there the
 * shares up to the failure have lost the group, so that a repeated call passes them over and gives
 * 0, while their sections in smb.conf let it in, and a later group of its name. AddShareWithGroup
 * writes them anew.
 * 0; FSH_ARGUMENT (20): the name is missing; FSH_GROUP_RESERVED (42): "everyone" and
 * "administrators" stay; the results of SysActGroup, DelKeyFromConf, GetGroupShareInfo and
 * DelGroupFromShares. A group that a file does not know counts as deleted from it. */
FSH_API unsigned DelGroup(const char* name);

/* Deletes the groups with gids from 2000 to 2254 from /etc/group, "everyone" and "administrators"
 * excepted, and every group from /etc/usrgrp.info, those two included. Access lists of shares stay.
 * Locks of mask 26; its files are restored after a failure.
 * 0; FSH_GROUP_NOT_DELETED (38): a lock is taken; the results of SysDelAllGroup and DelAllGRP. */
FSH_API unsigned DelAllGroup(void);

/* Renames a group in both files and in the access lists of all shares; gid and members stay. Locks
 * of mask 10, which it holds for four seconds a share; both files are restored after a failure. The
 * shares up to the failure keep the new name, and the group is shut out of them.
 * 0; FSH_ARGUMENT (20): a name is missing; FSH_GROUP_NOT_RENAMED (39): the new name is another
 * group's in any letter case, or this one's in another letter case, a lock is taken, or the old
 * name has no line in /etc/usrgrp.info; FSH_NO_MEMORY (23); the results of SysRenGroupName,
 * DelKeyFromConf, GetGroupShareInfo, GetShareWithGroup and AddShareWithGroup; FSH_FAILED (-1):
 * /etc/usrgrp.info could not be written; FSH_CANNOT_OPEN (21), when it is for /etc/usrgrp.info:
 * nothing is restored then, and the locks stay taken. */
FSH_API unsigned RenameGroup(const char* old_name, const char* new_name);

/* ---- Groups: one file at a time, for callers that hold its lock ----------------------------- */

#define FSH_ADD_GROUP 0u
#define FSH_DELETE_GROUP 1u

/* Adds the line of a group to /etc/group with the lowest free gid from 2000 to 2252, or deletes
 * every line of that name. Blank lines go. The name is compared in its letter case.
 * 0, also when there was no such group to delete; FSH_ARGUMENT (20): the name is missing, or mode
 * is none of the two; FSH_CANNOT_OPEN (21); FSH_NO_TEMPORARY (22); FSH_NO_MEMORY (23);
 * FSH_GROUP_EXISTS (43), FSH_NO_FREE_GID (41), FSH_GROUP_NOT_ADDED (37): copied in vain, when
 * adding; FSH_GROUP_NOT_DELETED (38): copied in vain, when deleting. */
FSH_API unsigned SysActGroup(const char* name, unsigned mode);

/* Renames the lines of a group in /etc/group. 0, also when there are none; FSH_ARGUMENT (20): a
 * name is missing; FSH_CANNOT_OPEN (21); FSH_NO_TEMPORARY (22); FSH_NO_MEMORY (23);
 * FSH_GROUP_EXISTS (43): there is a group of the new name, which may be the old one;
 * FSH_GROUP_NOT_RENAMED (39): copied in vain. */
FSH_API unsigned SysRenGroupName(const char* old_name, const char* new_name);

/* Deletes from /etc/group the groups with gids from 2000 to 2254 that are not among the count
 * names. 0; FSH_ARGUMENT (20): the array or a name in it is missing, or count is 0; FSH_CANNOT_OPEN
 * (21); FSH_NO_TEMPORARY (22); FSH_NO_MEMORY (23); FSH_GROUP_NOT_DELETED (38): copied in vain. */
FSH_API unsigned SysDelAllGroup(const char* const* kept, int count);

/* Deletes every key from a file in the form of /etc/usrgrp.info; the names protect none. The shell
 * gets path as it is. Results as SysDelAllGroup, FSH_ARGUMENT (20): the array or path is missing.
 */
FSH_API unsigned DelAllGRP(const char* const* names, int count, const char* path);

/* ---- Groups: queries; they take no lock ----------------------------------------------------- */

/* 1 when /etc/group has a group of this name in any letter case; else 0. */
FSH_API int GroupExist(const char* name);

/* The gid of the group of this name, in this letter case; FSH_GROUP_UNKNOWN (-5) without one. */
FSH_API int GetGroupId(const char* name);

/* The names of the groups with the gids 500, 501 and from 2000 up and with names of at most 20
 * characters, in the order of /etc/group, as a list that FreeGrpNameList frees.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21); FSH_NO_MEMORY (23); FSH_MALFORMED (24): a line lacks
 * one of its first three colons. After a failure *head must not be used. */
FSH_API unsigned GetGrpNameList(GroupNameItem** head);
FSH_API void FreeGrpNameList(GroupNameItem* head);

/* The number of names that GetGrpNameList lists; FSH_NO_GROUP_LIST (-2) when it fails. */
FSH_API unsigned GetNumOfGrps(void);

/* The groups of /etc/usrgrp.info in its order, each with its gid, members and shares.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21); FSH_NO_MEMORY (23); FSH_MALFORMED (24): a line
 * without a key, or with nothing behind its key; the results of GetGroupUserInfo. *head is null
 * after a failure, and what had been read is lost. */
FSH_API unsigned GetAllGroup(GroupItem** head);

/* Frees nothing: a process lists its groups once. */
FSH_API void FreeGrpList(GroupItem* head);

/* The shares of the group record->name, as a record of the heap: free its contents with
 * FreeGrpShareInfo and then the record with free(3). Null when the group is on no share, or when
 * the shares can not be read. */
FSH_API GroupShareInfo* GetGrpShares(const GroupItem* record);

/* Free what a record holds, not the record; null is passed over. FreeGrpUsers frees the strings and
 * leaves the array to the caller (FreeGroupUserInfo below frees both). */
FSH_API void FreeGrpUsers(GroupUserInfo* record);
FSH_API void FreeGrpShareInfo(GroupShareInfo* record);
FSH_API void FreeShareGrpInfo(ShareGroupInfo* record);

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
 * member already, nothing has been changed; FSH_MEMBER_NOT_ADDED (34): any other failure. A member
 * behind the first 255 gets a second entry: see UserInGroup. AddUsersToGroup calls
 * AddUsersToSysGroup: one call per process. */
FSH_API unsigned AddUsersToGroup(const char* group, const char* const* users, int count);
FSH_API unsigned AddUserToGroups(const char* user, const char* const* groups, int count);

/* Take users out of a group, and a user out of groups; who is no member is passed over. Locks of
 * mask 10; both files are restored after a failure.
 * 0; FSH_MEMBER_NOT_REMOVED (35): a lock is taken, or any other failure. */
FSH_API unsigned DelUsersFromGroup(const char* group, const char* const* users, int count);
FSH_API unsigned DelUserFromGroups(const char* user, const char* const* groups, int count);

/* ---- Membership: queries; they take no lock ------------------------------------------------- */

/* The users of the group record->name, from the first line of /etc/usrgrp.info for it: at most 255,
 * and whatever follows them is not looked at. Each name has room for 19 more characters. No such
 * line, or no members: count 0 and list null. FreeGroupUserInfo frees the contents.
 * 0; FSH_ARGUMENT (20): the record or its name is missing; FSH_CANNOT_OPEN (21); FSH_NO_MEMORY
 * (23); FSH_MALFORMED (24): an item without ":". */
FSH_API unsigned GetGroupUserInfo(GroupUserInfo* record);

/* The groups of the user record->name, in the order of /etc/usrgrp.info: at most 255.
 * FreeUserGroupInfo frees the contents. Results as GetGroupUserInfo. */
FSH_API unsigned GetUserGroupInfo(GroupUserInfo* record);

/* Free the strings of the list and the list, not the record; null is passed over. */
FSH_API void FreeGroupUserInfo(GroupUserInfo* record);
FSH_API void FreeUserGroupInfo(GroupUserInfo* record);

/* 1 when user is among the first 255 members of group, in this letter case; else 0. */
FSH_API int UserInGroup(const char* user, const char* group);

FSH_END_DECLS

#endif
