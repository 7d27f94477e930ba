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

/* What GetUserInfo gives as the password of a user who has one: the password itself is not known.
 * In UpdateUser it stands for "unchanged". */
#define FSH_PASSWORD_PLACEHOLDER "Qx7Rm2Lp9Tb4Vk"

/* ---- Queries; they take no lock ------------------------------------------------------------- */

/* The names of the listed users in the order of /etc/passwd, as a list that FreeUserNameList frees.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21): /etc/passwd; FSH_NO_MEMORY (23); FSH_MALFORMED (24):
 * a line lacks one of its first three colons. After a failure *head must not be used. */
FSH_API unsigned GetUserNameList(UserNameItem** head);
FSH_API void FreeUserNameList(UserNameItem* head);

/* The listed users with all their fields and their groups, as a list that FreeUserList frees.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21): /etc/usrgrp.info; FSH_NO_MEMORY (23); the results of
 * GetUserNameList, GetUserInfo and GetUserGroupInfo (groups.h).
 * Each call that succeeds leaves one stream open until the process ends. */
FSH_API unsigned GetAllUser(UserItem** head);

/* Frees the list and the names of the groups in it. The membership records and their arrays are not
 * freed: a process lists its users once. */
FSH_API void FreeUserList(UserItem* head);

/* 1 when a user of this name, in this letter case, is listed; else 0. */
FSH_API int UserExist(const char* name);

/* The number of listed users; FSH_FAILED (-1) when they can not be listed. */
FSH_API unsigned GetNumOfUsers(void);

/* Fills record from record->name: description and uid from /etc/passwd, the quota from the
 * "everyone" line. The password becomes FSH_PASSWORD_PLACEHOLDER for a user of that line and stays
 * empty for one of /etc/passwd alone, whose quota is 0. 0; FSH_ARGUMENT (20): the record or its
 * name is missing; FSH_CANNOT_OPEN (21): /etc/usrgrp.info; FSH_NO_MEMORY (23); FSH_USER_UNKNOWN
 * (33): not found, or an entry before it is malformed. */
FSH_API unsigned GetUserInfo(UserInfo* record);

/* 1 when this is the user's password; else 0. The first 15 characters count. */
FSH_API int IsUserPassCorrect(const char* name, const char* password);

FSH_END_DECLS

#endif
