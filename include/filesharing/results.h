/* Result codes of libfilesharing.
 *
 * A number has one name per meaning: the same number tells different things for different
 * operations, and each function's declaration says which of these it returns and when.
 */
#ifndef FILESHARING_RESULTS_H
#define FILESHARING_RESULTS_H

enum FshResult {
  FSH_OK = 0,

  /* Shared by all operations. */
  FSH_ARGUMENT = 20,     /* an argument is missing or empty */
  FSH_CANNOT_OPEN = 21,  /* a file could not be opened */
  FSH_NO_TEMPORARY = 22, /* no temporary file could be made */
  FSH_NO_MEMORY = 23,
  FSH_MALFORMED = 24, /* a line or an entry of a list can not be parsed */

  /* GetLineFromFile */
  FSH_LINE_TOO_LARGE = 1, /* memory ran out within a line */
  FSH_END_OF_FILE = 25,

  /* Users */
  FSH_USER_EXISTS = 26,           /* AddUser */
  FSH_USER_RESERVED = 27,         /* DelUser: "guest" and "admin" stay */
  FSH_USER_NOT_DELETED = 28,      /* DelUser, DelAllUser: locks taken, or a step failed */
  FSH_USER_LIST_NOT_WRITTEN = 28, /* UpdateUser: usrgrp.info */
  FSH_USER_NOT_UPDATED = 30,      /* UpdateUser: no such user, name taken, file not written */
  FSH_QUOTA_FAILED = 32,
  FSH_USER_UNKNOWN = 33,     /* GetUserInfo: not found, or the list is malformed */
  FSH_USER_NOT_ADDED = 34,   /* AddUser: locks taken, or usrgrp.info not written */
  FSH_UPDATE_USER_BUSY = 53, /* UpdateUser: locks taken */

  /* Membership */
  FSH_ADD_MEMBER_BUSY = 31,
  FSH_MEMBER_NOT_ADDED = 34,
  FSH_MEMBER_NOT_REMOVED = 35, /* locks taken, or a step failed */
  FSH_MEMBER_EXISTS = 54,

  /* Groups */
  FSH_GROUP_NOT_ADDED = 37,   /* locks taken, or /etc/group not written */
  FSH_GROUP_NOT_DELETED = 38, /* locks taken, or a file not written */
  FSH_GROUP_NOT_RENAMED = 39, /* name taken, locks taken, key missing, file not written */
  FSH_NO_FREE_GID = 41,
  FSH_GROUP_RESERVED = 42,
  FSH_GROUP_EXISTS = 43,

  /* Shares */
  FSH_AFP_SHARES_NOT_WRITTEN = 19, /* AppleVolumes.conf */
  FSH_ACCESS_NOT_REMOVED = 40,     /* DelGroupFromShare: a file was not rewritten */
  FSH_SHARE_NOT_DELETED = 44,      /* locks taken, or a section not deleted */
  FSH_SMB_SHARES_NOT_WRITTEN = 45, /* smb.conf */
  FSH_SHARE_UNREGISTERED = 47,     /* no line in either registry file */
  FSH_SHARE_EXISTS = 48,
  FSH_UPDATE_SHARE_BUSY = 48,
  FSH_SHARE_UNKNOWN = 49,
  FSH_SHARE_NOT_ADDED = 50, /* locks taken, no data folder on the volume, out of memory */
  FSH_ADD_ACCESS_BUSY = 51,
  FSH_REMOVE_ACCESS_BUSY = 52,
  FSH_ACCESS_EXISTS = 55,
  FSH_FOLDER_SHARED = 56, /* the folder is shared already, or that could not be told */

  /* Samba settings */
  FSH_BAD_SAMBA_SWITCH = 2,
  FSH_BAD_WINS_SWITCH = 3,
  FSH_WINS_SERVER_MISSING = 4,
  FSH_BAD_WINS_SERVER = 5,
  FSH_WORKGROUP_MULTIBYTE = 6,
  FSH_BAD_WORKGROUP = 7,
  FSH_WORKGROUP_MISSING = 8,
  FSH_BAD_PRINTER_NAME = 9,
  FSH_PRINTER_NAME_MULTIBYTE = 10,
  FSH_SAMBA_SETTINGS_UNREADABLE = 11,
  FSH_SAMBA_SETTINGS_NOT_SAVED = 12, /* lock taken, or settings file not written */
  FSH_SAMBA_NOT_APPLIED = 13,
  FSH_GUEST_NOT_SET = 56,
  FSH_PRINTER_NOT_SET = 57,

  /* Other services */
  FSH_AFP_SETTINGS_UNREADABLE = 18,
  FSH_AFP_NOT_SAVED = 19, /* settings file or afpd.conf not written */
  FSH_SERVICE_NOT_APPLIED = 36,
  FSH_GUEST_ACCESS_MISSING = 56, /* ResetFTP */
  FSH_AFP_NOT_RESET = 58
};

/* Codes below zero, as the functions with an unsigned result return them. */
#define FSH_FAILED 4294967295u           /* -1: general failure */
#define FSH_NO_GROUP_LIST 4294967294u    /* -2: GetNumOfGrps */
#define FSH_NO_SHARE_LIST 4294967293u    /* -3: GetNumOfShares */
#define FSH_COPY_BACK_FAILED 4294967292u /* -4: the rewritten file could not be copied back */
#define FSH_GROUP_UNKNOWN (-5)           /* GetGroupId */

#endif
