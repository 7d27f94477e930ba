/* Commands, volumes and text of the device (libutility.so.0). */
#ifndef PLATFORM_UTILITY_UTILITY_H
#define PLATFORM_UTILITY_UTILITY_H

#include "platform/api.h"

PLATFORM_BEGIN_DECLS

/* Formats a command line as printf(3), runs it with system(3) and returns its status, with the
 * errno that it left. -1 when `format` is null or the text can not be made.
 */
PLATFORM_API int SYSTEM(const char* format, ...) __attribute__((format(printf, 1, 2)));

/* The room for integers that callers of DSK_DetectSysDisk give it. */
#define DSK_RECORD_SIZE 32

/* Fills the first five entries with 1 or 0: volume 1, 2, 3, 4 and the RAID volume 5 are mounted at
 * /harddisk/volume_N (see /proc/mounts, proc(5)). Returns 0; -1 when `record` is null, or when the
 * mounts can not be read (no volume then counts as mounted).
 */
PLATFORM_API int DSK_DetectSysDisk(int* record);

/* Returns the number of the first mounted volume in the order 1, 2, 5, 3, 4; -1 without any. */
PLATFORM_API int FirstAvaibleVolume(void);

/* Copies `text` with a backslash before each character of `set`; `escaped` has room for twice the
 * text and a terminator. Returns 0, or -1 when an argument is null.
 */
PLATFORM_API int DBCS_SpecialChar(const char* text, char* escaped, const char* set);

/* Returns 1 when a byte from 128 up is in `text`, as in every character of more than one byte; else
 * 0, for null too.
 */
PLATFORM_API int DBCS_AnyDBCSInStr(const char* text);

PLATFORM_END_DECLS

#endif
