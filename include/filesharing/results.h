/* Result codes of libfilesharing.
 *
 * A number has one name per meaning: the same number tells different things for different
 * operations, and each function's declaration says which of these it returns and when.
 */
#ifndef FILESHARING_RESULTS_H
#define FILESHARING_RESULTS_H

#define FSH_OK 0u

/* Shared by all operations. */
#define FSH_ARGUMENT 20u     /* an argument is missing or empty */
#define FSH_CANNOT_OPEN 21u  /* a file could not be opened */
#define FSH_NO_TEMPORARY 22u /* no temporary file could be made */
#define FSH_NO_MEMORY 23u
#define FSH_MALFORMED 24u /* a line or an entry of a list can not be parsed */

/* GetLineFromFile */
#define FSH_LINE_TOO_LARGE 1u /* memory ran out within a line */
#define FSH_END_OF_FILE 25u

/* Users */
#define FSH_USER_EXISTS 26u           /* AddUser */
#define FSH_USER_RESERVED 27u         /* DelUser: "guest" and "admin" stay */
#define FSH_USER_NOT_DELETED 28u      /* DelUser, DelAllUser: locks taken, or a step failed */
#define FSH_USER_LIST_NOT_WRITTEN 28u /* UpdateUser: usrgrp.info */
#define FSH_USER_NOT_UPDATED 30u      /* UpdateUser: no such user, name taken, file not written */
#define FSH_QUOTA_FAILED 32u
#define FSH_USER_UNKNOWN 33u     /* GetUserInfo: not found, or the list is malformed */
#define FSH_USER_NOT_ADDED 34u   /* AddUser: locks taken, or usrgrp.info not written */
#define FSH_UPDATE_USER_BUSY 53u /* UpdateUser: locks taken */

/* Membership */
#define FSH_ADD_MEMBER_BUSY 31u
#define FSH_MEMBER_NOT_ADDED 34u
#define FSH_MEMBER_NOT_REMOVED 35u /* locks taken, or a step failed */
#define FSH_MEMBER_EXISTS 54u

/* Groups */
#define FSH_GROUP_NOT_ADDED 37u   /* locks taken, or /etc/group not written */
#define FSH_GROUP_NOT_DELETED 38u /* locks taken, or a file not written */
#define FSH_GROUP_NOT_RENAMED 39u /* name taken, locks taken, key missing, file not written */
#define FSH_NO_FREE_GID 41u
#define FSH_GROUP_RESERVED 42u
#define FSH_GROUP_EXISTS 43u

/* Shares */
#define FSH_AFP_SHARES_NOT_WRITTEN 19u /* AppleVolumes.conf */
#define FSH_ACCESS_NOT_REMOVED 40u     /* DelGroupFromShare: a file was not rewritten */
#define FSH_SHARE_NOT_DELETED 44u      /* locks taken, or a section not deleted */
#define FSH_SMB_SHARES_NOT_WRITTEN 45u /* smb.conf */
#define FSH_SHARE_UNREGISTERED 47u     /* no line in either registry file */
#define FSH_SHARE_EXISTS 48u
#define FSH_UPDATE_SHARE_BUSY 48u
#define FSH_SHARE_UNKNOWN 49u
#define FSH_SHARE_NOT_ADDED 50u /* locks taken, no data folder on the volume, out of memory */
#define FSH_ADD_ACCESS_BUSY 51u
#define FSH_REMOVE_ACCESS_BUSY 52u
#define FSH_ACCESS_EXISTS 55u
#define FSH_FOLDER_SHARED 56u /* the folder is shared already, or that could not be told */

/* Samba settings */
#define FSH_BAD_SAMBA_SWITCH 2u
#define FSH_BAD_WINS_SWITCH 3u
#define FSH_WINS_SERVER_MISSING 4u
#define FSH_BAD_WINS_SERVER 5u
#define FSH_WORKGROUP_MULTIBYTE 6u
#define FSH_BAD_WORKGROUP 7u
#define FSH_WORKGROUP_MISSING 8u
#define FSH_BAD_PRINTER_NAME 9u
#define FSH_PRINTER_NAME_MULTIBYTE 10u
#define FSH_SAMBA_SETTINGS_UNREADABLE 11u
#define FSH_SAMBA_SETTINGS_NOT_SAVED 12u /* lock taken, or settings file not written */
#define FSH_SAMBA_NOT_APPLIED 13u
#define FSH_GUEST_NOT_SET 56u
#define FSH_PRINTER_NOT_SET 57u

/* Other services */
#define FSH_AFP_SETTINGS_UNREADABLE 18u
#define FSH_AFP_NOT_SAVED 19u /* settings file or afpd.conf not written */
#define FSH_SERVICE_NOT_APPLIED 36u
#define FSH_GUEST_ACCESS_MISSING 56u /* ResetFTP */
#define FSH_AFP_NOT_RESET 58u

/* Codes below zero, as the functions with an unsigned result return them. */
#define FSH_FAILED 4294967295u           /* -1: general failure */
#define FSH_NO_GROUP_LIST 4294967294u    /* -2: GetNumOfGrps */
#define FSH_NO_SHARE_LIST 4294967293u    /* -3: GetNumOfShares */
#define FSH_COPY_BACK_FAILED 4294967292u /* -4: the rewritten file could not be copied back */
#define FSH_GROUP_UNKNOWN (-5)           /* GetGroupId */

#endif
