/* The configuration-file toolkit: text lines, account lines and member lists, key=value and
 * [section] files, lock files, and the backup of the account files.
 *
 * The conventions of types.h apply. Streams are the caller's: they stay open and stand behind what
 * was read. Characters are bytes; byte 255 is data like any other. No function here takes a lock
 * but Lock itself: whoever rewrites a file holds the lock of that file.
 */
#ifndef FILESHARING_CONF_H
#define FILESHARING_CONF_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Lines and fields ----------------------------------------------------------------------- */

/* Cuts blanks, carriage returns and line feeds at the end of str, in place. When a carriage return
 * or line feed was among them, the text then ends with one line feed. The first character is never
 * looked at. */
FSH_API void StripEndingSpace(char* str);

/* Reads one line of any length, with its line feed if it has one, into a new heap string at *line;
 * the caller frees it with free(3). A line of a line feed alone is a line.
 * 0; FSH_END_OF_FILE (25): nothing left, or no memory to begin with; FSH_LINE_TOO_LARGE (1): no
 * memory to go on; FSH_ARGUMENT (20): line or stream is missing. *line is null then. */
FSH_API unsigned GetLineFromFile(char** line, FILE* stream);

/* 1 when some line of the file has name as its first field (fields end at ":", letter case does not
 * count), else 0, also when the file can not be read. A line without ":" never matches. */
FSH_API int ItemExist(const char* name, const char* path);

/* In the readers of fields, from here to ReadGroup, a missing stream is at its end, a missing
 * buffer is full, and last and status may be missing. */

/* Copies the first three fields of a line of group(5), colons included, into buf of size bytes and
 * leaves the stream at the member list.
 * 1: the third colon was stored; 2: the line ended (its line feed is not stored) or buf is full;
 * 3: the file ended. */
FSH_API int GotoUserName(char* buf, int size, FILE* stream);

/* Reads one name of a comma-separated list into buf of size bytes, without the blanks before it.
 * *last becomes 0 when a comma ended the name, so that another follows, else 1.
 * 0: a name; 1: an empty one; 2: an empty one at the end of the file. */
FSH_API int GetUserName(char* buf, int size, int* last, FILE* stream);

/* Reads up to and including the next ":", line feed or carriage return into buf of size bytes.
 * The number of characters stored: 0 at the end of the file. */
FSH_API int readvkey(char* buf, int size, FILE* stream);

/* Reads a line up to and including its third ":" into buf of size bytes; a line feed or carriage
 * return that ends it earlier is taken but not stored. The number of characters stored.
 * *status: 0 the third colon was stored and the line goes on; 2 the file ended; 1 else. */
FSH_API int ReadGroup(char* buf, int size, FILE* stream, int* status);

/* Copies the template for a temporary file into buf, which holds 44 bytes at least: in conf/tmp of
 * the configuration volume (the first of the volumes 1, 2 and 5 whose conf folder holds the file
 * .qv27), or in /tmp without one. mkstemp(3) makes the file; nobody makes conf/tmp. */
FSH_API void GetTmpFileName(char* buf);

/* Writes message to the system log: ident "FILE_SHARE", facility user, priority error. The message
 * is the format string: a "%" in it is for the caller to double. */
FSH_API void logerr(const char* message);

/* ---- Keys and sections ---------------------------------------------------------------------- */

/* Read the value of the first line "key=value" of a section into dst, which holds max + 1 bytes:
 * cut to max characters, without its line end. section is a name, with or without its brackets;
 * null, or a section that the file does not have, means the lines before the first header. A header
 * line matches when it begins with "[section]". FSH_GetStrNoCase takes the key in any letter case.
 * 0; FSH_FAILED (-1): no such key, or key, dst or stream is missing. */
FSH_API unsigned FSH_GetStr(const char* section, const char* key, char* dst, int max, FILE* stream);
FSH_API unsigned FSH_GetStrNoCase(const char* section, const char* key, char* dst, int max,
                                  FILE* stream);

/* The length of the value of key, taken in any letter case; a trailing carriage return counts.
 * section is a name in any letter case, with or without its brackets; null as for FSH_GetStr.
 * 0 when there is no such key; FSH_FAILED (-1): no such section, or key or stream is missing. */
FSH_API unsigned FSH_GetStrLen(const char* section, const char* key, FILE* stream);

/* Deletes every line that begins with key and the character separator. Without such a line the file
 * is not touched. Sets SIGCHLD to its default action. Here and below the shell gets path as it is.
 * 0; FSH_ARGUMENT (20): key or path is missing or empty; FSH_NO_TEMPORARY (22);
 * FSH_CANNOT_OPEN (21); FSH_COPY_BACK_FAILED (-4). */
FSH_API unsigned DelKeyItem(const char* key, const char* path, char separator);

/* Deletes every line whose text before the first "=" is key, and every blank line; the file is
 * always rewritten. Results as DelKeyItem. */
FSH_API unsigned DelKeyFromConf(const char* key, const char* path);

/* Rename every key "old=", every name "old:" or every section "[old]" of a file to the new name.
 * The rest of the line stays, except behind a header, where it is dropped. 0; FSH_FAILED (-1): an
 * argument is missing, a file can not be opened, or the result could not be copied back;
 * FSH_NO_TEMPORARY (22). */
FSH_API unsigned RenameKey(const char* old_key, const char* new_key, const char* path);
FSH_API unsigned RenameKey1(const char* old_name, const char* new_name, const char* path);
FSH_API unsigned RenameSect(const char* old_section, const char* new_section, const char* path);

/* ---- Locks and backups ---------------------------------------------------------------------- */

/* A change that takes locks begins only when it can be finished: without room for its copies, its
 * temporary file and what it adds, on the configuration volume or on the file system of /etc, it
 * gives the locks back, changes nothing and returns the code that it has for a file that could not
 * be written. A copy that did not become whole all the same is removed and never restored from; a
 * file without one stays as it is when the change fails. No file is ever left with a part: a file
 * or a mirrored file that lacks the room to grow is not copied over, and what a copy that was cut
 * short has left is made the old content again. */

/* What a lock guards, and which file a backup copies. Masks are sums of these. Backups are of the
 * files in the conf folder of the configuration volume: of the shares they hold that volume's own
 * list, never /etc/share.info, which no restore brings back. */
enum FshFile {
  FSH_FILE_PASSWORD = 1, /* /etc/passwd                  lock /tmp/pass.lck */
  FSH_FILE_GROUP = 2,    /* /etc/group                   lock /tmp/grp.lck */
  FSH_FILE_SHARE = 4,    /* /etc/share.info              lock /tmp/share.lck */
  FSH_FILE_USER = 8,     /* /etc/usrgrp.info             lock /tmp/user.lck */
  FSH_FILE_SMB = 16,     /* /etc/samba/smb.conf          lock /tmp/smb.lck */
  FSH_FILE_SMBPASS = 32, /* /etc/samba/smbpasswd         lock /tmp/smbpass.lck */
  FSH_FILE_WEBPASS = 64  /* the web password file        lock /tmp/webpass.lck */
};

/* Takes the locks of mask, in the order 1, 2, 8, 4, 16, 32, 64, by creating their files
 * exclusively. 0 when all were taken; else the bit of the first that was not. The locks taken
 * before it then stay taken: the caller gives up and does not unlock. A process that dies leaves
 * its locks behind. */
FSH_API unsigned Lock(int mask);

/* Removes the lock files of mask, whoever took them. */
FSH_API void Unlock(int mask);

/* Copy the files of mask in the conf folder of the configuration volume to copies of the same names
 * with ".ttt" appended, and back. The copies stay; the next backup overwrites them. A file that is
 * missing leaves its counterpart as it was. Called by themselves they copy whatever is there: on a
 * full disk that cuts the target short.
 * -1: there is no configuration volume; else the status of the last command (system(3)), 0 for an
 * empty mask. */
FSH_API int BackupConFiles(int mask);
FSH_API int RestoreConFiles(int mask);

/* Copies passwd, smbpasswd, group and usrgrp.info of volume 1 to volume 2 when both are there. A
 * file that volume 2 has no room for stays there as it was. */
FSH_API void UpdateDiskUserGroupInfo(void);

FSH_END_DECLS

#endif
