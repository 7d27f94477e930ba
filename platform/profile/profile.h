/* Profile files: settings as "key=value" lines in "[section]" blocks (libprofile.so.0).
 *
 * The form, which every function here relies on:
 *
 *  1. A section starts at a line "[name]" and ends at the next line that begins with "[". Blanks
 *     round the name and text after the "]" are tolerated; names compare without regard to case,
 *     as Samba's do. Of several sections of one name the first counts. A null section means the
 *     lines before the first line that begins with "[".
 *  2. A key line is the key, "=" and the value. Blanks round the key do not count, keys compare
 *     with regard to case, and of several lines of one key the first counts. A carriage return and
 *     a line feed at the end belong to the line and not to the value.
 *  3. Every other line (comments, blank lines, anything else) is kept byte for byte.
 *
 * The functions that read take an open stream, rewind it and leave it open. Those that write take
 * a path and replace the file as a whole or not at all: the new text is written to a hidden
 * temporary file beside the file that the path leads to (through symbolic links), gets its owner
 * and mode, is synced to disk and renamed over it. A file that is missing is made, mode 0644. No
 * locks are taken.
 */
#ifndef PLATFORM_PROFILE_PROFILE_H
#define PLATFORM_PROFILE_PROFILE_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "platform/api.h"

PLATFORM_BEGIN_DECLS

#define PROFILE_KEY_SIZE 24

/* One key of PRO_SetMultiItemStr. */
typedef struct ProfileItem {
  char key[PROFILE_KEY_SIZE]; /* terminated, unless it has all 24 characters */
  const char* value;
  int32_t reserved; /* ignored */
} ProfileItem;
PLATFORM_LAYOUT(offsetof(ProfileItem, value) == 24);
PLATFORM_LAYOUT(sizeof(void*) != 4 || sizeof(ProfileItem) == 32);

/* Reads a value: drops the blanks before it, copies at most `max` characters and terminates, so
 * `value` has room for max + 1. Returns 0 when the key is there, also with an empty value; -1 when
 * it is not, or an argument but `section` is null, or `max` is negative; `value` then stays as it
 * was.
 */
PLATFORM_API int PRO_GetStr(const char* section, const char* key, char* value, int max,
                            FILE* stream);

/* Reads a decimal number with an optional sign; blanks round it do not count. Returns 0, or -1 when
 * the key is missing or its value is no such number or does not fit an int; `value` then stays as
 * it was.
 */
PLATFORM_API int PRO_GetInt(const char* section, const char* key, int* value, FILE* stream);

/* Returns the length of a value as it stands in the file, the blanks before it included, to size a
 * buffer for reading it raw; -1 when there is no such key.
 */
PLATFORM_API int PRO_GetStrLen(const char* section, const char* key, FILE* stream);

/* Leaves the stream behind the section's header line; with a null section at its start. Returns 0,
 * or -1 when there is no such section.
 */
PLATFORM_API int PRO_2sect(const char* section, FILE* stream);

/* Sets a key: its line becomes "key=value" in its place; a new key goes to the end of its section,
 * before the blank lines that trail it; a new section goes to the end of the file. Returns 0, or -1
 * with the file untouched: it can not be read or replaced, an argument but `section` is null, or
 * one of them could not be found again (an empty key, a key that begins with "[", a section that
 * holds a "]", a line feed anywhere).
 */
PLATFORM_API int PRO_SetStr(const char* section, const char* key, const char* value,
                            const char* path);

/* PRO_SetStr under its second name. */
PLATFORM_API int PRO_SetStr1(const char* section, const char* key, const char* value,
                             const char* path);

/* PRO_SetStr with a decimal number. */
PLATFORM_API int PRO_SetInt(const char* section, const char* key, int value, const char* path);

/* PRO_SetStr for `count` keys in one rewrite: all of them or none. Returns 0, or -1 as PRO_SetStr,
 * also for a negative count; a count of 0 gives 0 and touches nothing.
 */
PLATFORM_API int PRO_SetMultiItemStr(const char* section, const ProfileItem* items, int count,
                                     const char* path);

/* Removes every section of that name, header and lines. Returns 0, also when there was none (the
 * file is then not written); -1 when an argument is null or the file can not be read or replaced.
 */
PLATFORM_API int PRO_DelSect(const char* section, const char* path);

PLATFORM_END_DECLS

#endif
