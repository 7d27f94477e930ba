/* Network services. The conventions of types.h apply, above all that about SIGCHLD. */
#ifndef FILESHARING_SERVICES_H
#define FILESHARING_SERVICES_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Samba ---------------------------------------------------------------------------------- */

/* Copies at most len characters of src into dst without the blanks, and terminates dst, which has
 * room for len + 1. Nothing else is changed; a len below 1 gives an empty text, and src ends the
 * copy where it ends. For addresses typed with blanks between the numbers. */
FSH_API void omitIpSpace(char* dst, const char* src, int len);

/* Fills settings, which the caller has cleared, from the keys of the same names. 0; FSH_ARGUMENT
 * (20): null; FSH_SAMBA_SETTINGS_UNREADABLE (11): the settings file can not be opened, a key is
 * missing or the code page is no number; the fields before that one are then filled. */
FSH_API unsigned ReadSambaConf(SambaSettings* settings);

/* Checks settings and saves them; SetSMB makes Samba follow. The blanks in wins_server are removed
 * and "0.0.0.0" becomes empty, in the record too, also when a later check fails. The first check
 * that fails decides and leaves the settings file as it was:
 * FSH_BAD_SAMBA_SWITCH (2): msn_enable is neither "yes" nor "no";
 * FSH_BAD_WORKGROUP (7): w_d_name holds one of "/\[]:;|=.,+*?<> (a blank is allowed);
 * FSH_WORKGROUP_MULTIBYTE (6): w_d_name holds a byte from 128 up;
 * FSH_WORKGROUP_MISSING (8): w_d_name is empty while msn_enable is "yes";
 * FSH_BAD_WINS_SWITCH (3): wins_enable is neither "yes" nor "no";
 * FSH_BAD_WINS_SERVER (5): wins_server is no address for inet_aton(3), is "255.255.255.255", or has
 *   a dot and before it 0, 127, 224 to 239 or 255 (without a dot "127" is the address 0.0.0.127);
 * FSH_WINS_SERVER_MISSING (4): wins_server is empty, "..." or "0.0.0.0" while wins_enable is "yes";
 * FSH_BAD_PRINTER_NAME (9): printer_name holds one of "/\[]:;|=.,+*?<>'` or a blank;
 * FSH_PRINTER_NAME_MULTIBYTE (10): printer_name holds a byte from 128 up.
 * Also FSH_ARGUMENT (20): null; FSH_SAMBA_SETTINGS_NOT_SAVED (12): the settings file can not be
 * written, a name holds a line feed, or the lock /tmp/samba.lck, which this function takes before
 * anything else, is taken.
 * 0 when all is saved. */
FSH_API unsigned SaveSambaConf(SambaSettings* settings);

/* Makes Samba follow the saved settings: smb.conf(5)'s global section, and the daemons started or
 * stopped. When the service is off it is only stopped. Takes no lock. 0; FSH_SAMBA_NOT_APPLIED
 * (13): the keys of ReadSambaConf or, with the service on, disk_server_comment, printer_comment or
 * recycle can not be read, or Samba could not be set. Whether the recycle bin ("vfs object") could
 * be written does not count. */
FSH_API unsigned SetSMB(void);

/* Lets guests in or not, by the setting guest_access: "yes" sets "username map" in smb.conf(5) to
 * "no", anything else to /etc/samba/smbusers. Takes no lock. 0; FSH_CANNOT_OPEN (21): the settings
 * file; FSH_GUEST_NOT_SET (56): guest_access is missing, or smb.conf can not be written. */
FSH_API unsigned ResetGuest(void);

/* Sets "load printers" in smb.conf(5) to the first four characters of the setting printer_icon,
 * when volume 1 is mounted. These have to be a word that Samba takes for a boolean (yes, no, true,
 * on or off; "false" is cut): with any other smb.conf does not load. Takes no lock.
 * 0, also when it is not mounted; FSH_CANNOT_OPEN (21): the settings file; FSH_PRINTER_NOT_SET
 * (57): printer_icon is missing, or smb.conf can not be written. */
FSH_API unsigned ResetPrinter(void);

/* ---- FTP ------------------------------------------------------------------------------------ */

/* Fills settings. Missing keys are no failure: switches are then 0, the language 437, bandwidth and
 * ssl 0. A port that is neither 21 nor 1024 to 65535 becomes 21, a data port that is neither 20 nor
 * 1024 to 65535 becomes 20; a missing port is first taken from the record as the caller had it.
 * 0; -1: null, or the settings file can not be opened. Each call that succeeds leaves one stream
 * open until the process ends. */
FSH_API int ReadFTPConf(FtpSettings* settings);

/* Saves every field but reserved, unchecked, in one rewrite of the settings file. Takes no lock.
 * 0; -1: null, or the settings file can not be written. */
FSH_API int SaveFTPConf(const FtpSettings* settings);

/* Writes the saved settings into /etc/services, /etc/vsftpd.conf (vsftpd.conf(5)) and
 * /etc/inetd.conf, in this order, stops inetd and bftpd, and starts inetd a second later in a
 * process of its own. Takes no lock; a failure leaves the files before that one rewritten. Leaves
 * one stream open until the process ends.
 * 0; FSH_CANNOT_OPEN (21): one of the three files, the settings file, or the temporary file of the
 * second or third; FSH_NO_TEMPORARY (22): the first temporary file; FSH_SERVICE_NOT_APPLIED (36):
 * the settings can not be read, a file can not be copied back, or SIGCHLD is ignored: all three are
 * written then, and inetd runs on as it was; FSH_GUEST_ACCESS_MISSING (56): the setting
 * guest_access. */
FSH_API unsigned ResetFTP(void);

/* ---- AFP and mDNS --------------------------------------------------------------------------- */

/* Reads the AFP settings: keys apple_* of section "network". maccode is always "UTF8-MAC", with its
 * double quotes, and tm_share is empty when its key is missing. Each call that succeeds leaves the
 * settings file open until the process ends.
 * 0; FSH_ARGUMENT (20): no record; FSH_AFP_SETTINGS_UNREADABLE (18): the settings file can not be
 * opened, or apple_enable, apple_anony, apple_name or apple_unixcode is missing; the record is as
 * it was then. */
FSH_API unsigned ReadAFPConf(AfpSettings* settings);

/* Saves the AFP settings in one rewrite of the settings file, as they are.
 * 0; FSH_AFP_NOT_SAVED (19): no record, or not written, as with a line feed in a text. */
FSH_API int SaveAFPConf(const AfpSettings* settings);

/* 1 when AFP is on and share, in this letter case, is the Time Machine share; else 0. Leaves a
 * stream open each time that the settings can be read, and so do ResetmDNSConf, ResetAFP, DelShare
 * and DelAllShare. */
FSH_API int IsShUsedByTM(const char* share);

/* Stops the mDNS responder, writes /etc/howl/mDNSResponder.conf anew (the web server; with AFP on
 * the AFP server; with a Time Machine share that exists that too) and starts it. Takes about 8
 * seconds. A file that is missing is made for all to read and write but for the process's umask,
 * which ResetAFP clears. 0; -1: the settings file can not be opened, the key port or the device's
 * name is missing, or the responder's file can not be written. The responder stays stopped then. */
FSH_API int ResetmDNSConf(void);

/* Writes the one line of /etc/netatalk/afpd.conf and waits 2 seconds for it to settle.
 * 0; FSH_NO_TEMPORARY (22); FSH_CANNOT_OPEN (21): the temporary file; FSH_AFP_NOT_SAVED (19): not
 * copied back, or written while SIGCHLD is ignored. */
FSH_API unsigned SetAFPDConf(AfpSettings settings);

/* Applies the AFP settings in a process of its own: about 5 seconds later that process stops afpd,
 * with AFP on writes afpd.conf and starts it, and calls ResetmDNSConf. Sets SIGCHLD to its default
 * action.
 * 0: on its way; FSH_AFP_NOT_RESET (58): the settings can not be read. When afpd.conf can not be
 * written, the background process too returns from this call, with the code of SetAFPDConf. */
FSH_API unsigned ResetAFP(void);

/* Appends a line to the debug file /var/glb_dbg: "afp:debug_afp():[23]:" and the message. Does
 * nothing when the file can not be opened. */
FSH_API void debug_afp(const char* format, ...) __attribute__((format(printf, 1, 2)));

/* ---- HTTPS tunnel --------------------------------------------------------------------------- */

/* Restarts stunnel(8) in a process of its own, with its "connect" in /etc/stunnel.conf set to the
 * setting port of the web server (80 when it is missing). The running tunnel stops after ten
 * seconds; the new one starts four later, only when the setting https is exactly "yes". Takes no
 * lock. Sets SIGCHLD to its default action. 0 when that process was started; -1: the settings file
 * can not be opened, or https is missing, which leaves one stream open until the process ends. */
FSH_API int ResetHttps(void);

FSH_END_DECLS

#endif
