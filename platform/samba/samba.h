/* Samba's global settings, and text as Samba compares it (libsamba.so). */
#ifndef PLATFORM_SAMBA_SAMBA_H
#define PLATFORM_SAMBA_SAMBA_H

#include <stddef.h>

#include "platform/api.h"

PLATFORM_BEGIN_DECLS

/* The input of SMBSetSamba; clear the whole record before use. A text that fills its field has no
 * terminator: the fields are read by their size.
 */
typedef struct SambaServerParams {
  char state[8]; /* "enable" or "disable" */
  char server_comment[49];
  char workgroup[16];
  char code_page[6]; /* of the clients, decimal */
  char printer_name[21];
  char printer_comment[81];
  char wins_server[16]; /* dotted decimal, empty for none */
} SambaServerParams;
PLATFORM_LAYOUT(offsetof(SambaServerParams, server_comment) == 8);
PLATFORM_LAYOUT(offsetof(SambaServerParams, workgroup) == 57);
PLATFORM_LAYOUT(offsetof(SambaServerParams, code_page) == 73);
PLATFORM_LAYOUT(offsetof(SambaServerParams, printer_name) == 79);
PLATFORM_LAYOUT(offsetof(SambaServerParams, printer_comment) == 100);
PLATFORM_LAYOUT(offsetof(SambaServerParams, wins_server) == 181);
PLATFORM_LAYOUT(sizeof(SambaServerParams) == 197);

/* Switches Samba. "enable" writes the fields into the section "global" of /etc/samba/smb.conf as
 * the keys of smb.conf(5) ("server string", "workgroup", "dos charset", "printer name", "comment",
 * "wins server"), ends smbd and nmbd where they run and starts them anew. What it writes is in
 * force then, unless an included file says otherwise: lines with other spellings of these keys and
 * of the three that callers set with PRO_SetStr ("vfs object", "username map", "load printers"),
 * and repeated ones, go from all sections "global". The keys stand in the first of these, before
 * what it includes; it is made at the head of the file when a share stands there. Every other line
 * stays. A code page that iconv(3) does not know becomes Samba's default. "disable" ends the
 * daemons and leaves the file alone. A daemon that has not ended after ten seconds is killed.
 * Returns 0; -1 when `params` is null, its state is neither text, a field holds a line feed, the
 * file can not be replaced (nothing is then ended or started) or a daemon does not start. */
PLATFORM_API int SMBSetSamba(const SambaServerParams* params);

/* Returns where the character with the code point `character` first stands in UTF-8 text, 0 finding
 * the terminator; null when it is not there or `text` is null. Never stops within a character of
 * several bytes.
 */
PLATFORM_API char* strchr_m(const char* text, int character);

/* Returns 1 when two UTF-8 texts are equal without regard to the case of letters (Latin, Greek,
 * Cyrillic, Armenian, full-width), whatever the locale; else 0. Bytes that are no UTF-8 equal only
 * themselves. Null equals null alone.
 */
PLATFORM_API int strequal(const char* text1, const char* text2);

PLATFORM_END_DECLS

#endif
