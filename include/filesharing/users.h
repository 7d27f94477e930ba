/* User accounts.
 *
 * A user is a line of /etc/passwd, a line of Samba's smbpasswd file, an entry of the "everyone"
 * line of /etc/usrgrp.info (name and quota) and, for the administrator alone, the line of the web
 * password file /home/httpd/html/Management/.htpasswd.
 *
 * A line of /etc/passwd is passwd(5), with one field used otherwise: passwords are hashed with
 * traditional DES crypt(3), which sees 8 characters, so that the characters 9 to 15 of a longer
 * password are hashed apart and that hash stands in field 6, the home directory. What follows the
 * 15th character is ignored. A field 6 that is empty or begins with "/home/user" is no hash.
 *
 * Listed are the users with the ids 500, 501, 502 and from 2000 up, with names of at most 20
 * characters. The conventions of types.h apply.
 */
#ifndef FILESHARING_USERS_H
#define FILESHARING_USERS_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* What GetUserInfo gives as the password of a user on the "everyone" line, who may have none: the
 * password itself is not known. In UpdateUser it stands for "unchanged". */
#define FSH_PASSWORD_PLACEHOLDER "Qx7Rm2Lp9Tb4Vk"

/* ---- Queries; they take no lock ------------------------------------------------------------- */

/* The names of the listed users in the order of /etc/passwd, as a list that FreeUserNameList frees.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21): /etc/passwd; FSH_NO_MEMORY (23); FSH_MALFORMED (24):
 * a line lacks one of its first three colons, or its name has a zero byte in it. After a failure
 * *head must not be used. */
FSH_API unsigned GetUserNameList(UserNameItem** head);
FSH_API void FreeUserNameList(UserNameItem* head);

/* The listed users with all their fields and their groups, as a list that FreeUserList frees.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21): /etc/usrgrp.info; FSH_NO_MEMORY (23); the results of
 * GetUserNameList, GetUserInfo and GetUserGroupInfo (groups.h).
 * Each call that succeeds leaves one stream open until the process ends. Rewinds getpwent(3). */
FSH_API unsigned GetAllUser(UserItem** head);

/* Frees the list and the names of the groups in it. The membership records and their arrays are not
 * freed: a process lists its users once. */
FSH_API void FreeUserList(UserItem* head);

/* 1 when a user of this name, in this letter case, is listed; else 0. */
FSH_API int UserExist(const char* name);

/* The number of listed users; FSH_FAILED (-1) when they can not be listed. */
FSH_API unsigned GetNumOfUsers(void);

/* Fills record from record->name: description and uid from /etc/passwd, the quota from the
 * "everyone" line. The password becomes FSH_PASSWORD_PLACEHOLDER for a user of that line, with or
 * without a password, and stays empty for one of /etc/passwd alone, whose quota is 0. UpdateUser
 * takes an empty password for none: given such a record as it is, it takes the user's password
 * away; the placeholder has to be put in first.
 * 0; FSH_ARGUMENT (20): the record or its name is missing; FSH_CANNOT_OPEN (21): /etc/usrgrp.info;
 * FSH_NO_MEMORY (23); FSH_USER_UNKNOWN (33): not found, or an entry before it is malformed; for
 * every name when the line is missing or empty. */
FSH_API unsigned GetUserInfo(UserInfo* record);

/* 1 when this is the user's password; else 0. The first 15 characters count where field 6 holds a
 * hash, else only the first 8 do: what is typed behind a password of 8 characters makes no
 * difference. */
FSH_API int IsUserPassCorrect(const char* name, const char* password);

/* ---- Changes -------------------------------------------------------------------------------- */

/* AddUser, UpdateUser and DelUser are transactions: they take their locks (Lock in conf.h), back up
 * the files that they lock, and on the first step that fails restore these and return its code; on
 * success the account files are mirrored to the second disk. What the outside tools have changed
 * elsewhere is not undone. When a lock is taken they fail at once, and the locks taken before it
 * stay. All set SIGCHLD to its default action. AddUser and UpdateUser wait a second.
 *
 * Where a result is "the status of smbpasswd" it is what system(3) gives: 256 times the exit code
 * of the tool. */

/* Adds a user: record->name, description, password (plain; empty for none) and quota count. The uid
 * is the lowest free one from 2000 up. The user joins the group "everyone", also in the list of
 * /etc/usrgrp.info if there is one. One call per process: of further new users AddUsersToSysGroup
 * puts none into /etc/group, and nothing tells. With a password the name is not escaped for the
 * shell: callers refuse double quotes, dollars, backslashes and back quotes. Locks: password,
 * group, user, SMB password. Rewinds getpwent(3).
 * 0; FSH_ARGUMENT (20): the record or its name is missing; FSH_USER_EXISTS (26): /etc/passwd has
 * the name, in any letter case; FSH_USER_NOT_ADDED (34): a lock is taken or usrgrp.info was not
 * written; FSH_CANNOT_OPEN (21); FSH_NO_TEMPORARY (22); FSH_MALFORMED (24): an entry of "everyone";
 * FSH_QUOTA_FAILED (32); the status of smbpasswd; the results of AddUsersToSysGroup (groups.h). */
FSH_API unsigned AddUser(const UserInfo* record);

/* Gives the user old_name the name, description, password, uid and quota of the record. A uid of 0
 * keeps the old one, FSH_PASSWORD_PLACEHOLDER the old password; an empty password is no password. A
 * new password ends the user's SMB connections, and that of "admin" is the password of the
 * management pages too. Locks: password, group, user, SMB password, web password.
 * 0; FSH_ARGUMENT (20): old_name, the record or its name is missing; FSH_USER_NOT_UPDATED (30): no
 * such user, the new name is taken (another letter case of the old one is), or the password, SMB
 * password or group file was not written; FSH_UPDATE_USER_BUSY (53): a lock is taken;
 * FSH_CANNOT_OPEN (21); FSH_NO_TEMPORARY (22); FSH_MALFORMED (24): an entry of a list in
 * usrgrp.info; FSH_USER_LIST_NOT_WRITTEN (28): usrgrp.info; FSH_QUOTA_FAILED (32); the status of
 * smbpasswd. A web password file that can not be opened undoes the change and gives 0. */
FSH_API unsigned UpdateUser(const char* old_name, const UserInfo* record);

/* Limits what the user can store on each data disk, in megabytes; 0 lifts the limit. Takes no lock,
 * and always goes through the file /tmp/edquota.tmp, which stays: callers hold a lock themselves.
 * Sets SIGCHLD to its default action.
 * 0, also on a server without a data disk; FSH_ARGUMENT (20): name is missing; FSH_CANNOT_OPEN
 * (21): the file can not be made; FSH_QUOTA_FAILED (32): the quota tool failed. */
FSH_API unsigned SetUserQuota(const char* name, uint32_t megabytes);

/* Deletes a user from the account files, and from the members of each group and list. Shares,
 * quotas and the user's files stay. Ends the user's SMB connections. Locks as UpdateUser.
 * 0, also for a name that nobody has; FSH_ARGUMENT (20): name is missing or empty;
 * FSH_USER_RESERVED (27): "guest" and "admin" stay; FSH_USER_NOT_DELETED (28): a lock is taken or
 * any step failed, as it does on a server without a web password file. */
FSH_API unsigned DelUser(const char* name);

/* Deletes the listed users but "guest" and "admin", one after the other, until one can not be.
 * 0; FSH_USER_NOT_DELETED (28): the users can not be listed, or DelUser failed. */
FSH_API unsigned DelAllUser(void);

FSH_END_DECLS

#endif
