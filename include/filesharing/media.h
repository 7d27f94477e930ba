/* The media servers: iTunes, music broadcast and UPnP AV.
 *
 * Each publishes folders of the shares, which the settings name by reference: "/SHARE" or
 * "/SHARE/FOLDER/FOLDER", shares by their names of the registry (shares.h). Settings are keys of
 * section "media" of the settings file; the functions that begin with Reset write them into the
 * daemon's own file and restart it.
 *
 * No function here takes a lock. The conventions of types.h apply.
 */
#ifndef FILESHARING_MEDIA_H
#define FILESHARING_MEDIA_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Folders -------------------------------------------------------------------------------- */

/* Resolves a reference. Several slashes count as one, what stands before the first one does not
 * count. With check_only 0, share gets the name of the share and folder "/" and the folder within
 * it, or an empty text without one; each has room for strlen(reference) + 1, and may be null.
 * 0; -1: no reference, no "/" in it, or no such share; -2: the folder is not there. Nothing is
 * copied unless the result is 0. */
FSH_API int StripShareAndFolder(const char* reference, char* share, char* folder, int check_only);

/* Whether a line of /proc/mounts, see proc(5), holds the text, "ntfs" and "ro,": a mount point on a
 * volume of NTFS that can only be read. Lines are looked at in pieces of 127 characters. 1 or 0; 0
 * also for null. */
FSH_API int IsFolderReadonly(const char* text);

/* ---- Stopping and starting around volumes --------------------------------------------------- */

/* Servers are named by bits: 1 iTunes, 4 music broadcast, 8 UPnP AV.
 *
 * Stops the servers that are on and publish a folder of this volume, and returns the bits of those,
 * for StartMediaProcess once the folder is back. With a share_prefix, iTunes and broadcast stop
 * only for shares whose names begin with it, in this letter case; on volume 1 it does not count,
 * and for UPnP it never does. iTunes and broadcast also stop when their folder is gone, on whatever
 * volume; they are then not among the bits. The UPnP database is removed. With persist, all that
 * were stopped are also switched off in the settings file.
 * Waits 2 seconds for each of iTunes and broadcast that is on, and as StopUPnPDaemon for each UPnP
 * folder on the volume. 0 also when the settings file can not be opened. */
FSH_API unsigned StopMediaProcess(int volume, const char* share_prefix, int persist);

/* Waits 6 seconds, in which disks settle, and resets the servers of these bits, UPnP with an empty
 * database. Returns what ResetUPnPAV returned, else 0: failures of the other two are not told. */
FSH_API unsigned StartMediaProcess(unsigned mask);

/* Stop all three whatever their settings; StopAllMedia1 keeps the UPnP database, unless a folder in
 * use lies on a removable share: see StopUPnPDaemon. */
FSH_API void StopAllMedia(void);
FSH_API void StopAllMedia1(void);

/* ---- iTunes --------------------------------------------------------------------------------- */

/* Clears and fills the record from itune, itune_name and itune_path. enabled is 1 when itune begins
 * with "yes"; without a name it is the device's with "_iTunes", cut to the field.
 * 0; -1: no record, or the settings file can not be opened. */
FSH_API int ReadiTuneConf(ITunesSettings* settings);

/* Saves the three keys, unchecked. 0; -1: no record, or the settings file can not be written. A
 * text with a line feed can not be; then the switch alone is saved. SaveUPnPAVConf does the same,
 * and SaveBroadConf saves "broad" alone. */
FSH_API int SaveiTuneConf(const ITunesSettings* settings);

/* Stops mt-daapd, waits 2 seconds and, when it is on, replaces the lines of /etc/mt-daapd.conf that
 * begin with "mp3_dir", "port" and "servername", removes /tmp/songs.gdb, the list of songs, and
 * starts it. Lines that are missing are not added. A folder that is gone switches it off.
 * 0; -1: the settings file can not be opened, the path does not resolve, mt-daapd.conf or its
 * temporary file can not be opened or copied, or SIGCHLD is ignored: it is written then, and
 * nothing starts. What GetShareInfo returned when the share went away during the call, which
 * switches it off, too. Whether the daemon started does not count. */
FSH_API int ResetItune(void);

/* ---- Music broadcast ------------------------------------------------------------------------ */

/* Clears and fills the record from music_broad, broad_name, broad_port, broad_path and play_method.
 * enabled is 1 when music_broad begins with "yes"; without a name it is the device's with "_MP3",
 * cut to the field; a port that is missing, no number or 0 is 1234.
 * 0; -1: no record, or the settings file can not be opened. */
FSH_API int ReadBroadConf(BroadcastSettings* settings);

/* Saves the five keys, unchecked, and the switch as "broad", too. 0; -1: no record, or the settings
 * file can not be written. */
FSH_API int SaveBroadConf(const BroadcastSettings* settings);

/* Stops ample, waits 2 seconds, and writes /etc/ample.conf, the line of ample in /etc/services (see
 * services(5)) and the one in /etc/inetd.conf, in this order; then stops inetd and starts it a
 * second later in a process of its own. When the broadcast is off all this is done as well: the
 * line of inetd.conf goes, that of services stays. A folder that is gone switches it off. Sets
 * SIGCHLD to its default action. 0; FSH_FAILED (-1): the settings file can not be opened, or the
 * path does not resolve; the code of GetShareInfo when the share went away during the call;
 * FSH_CANNOT_OPEN (21): the settings file meanwhile, services, inetd.conf or a temporary file;
 * FSH_SERVICE_NOT_APPLIED (36): one of those two was not copied back. Files before the failure are
 * written. */
FSH_API unsigned ResetBroadcast(void);

/* ---- UPnP AV -------------------------------------------------------------------------------- */

/* Clears and fills the record. From section "media": upnp_av ("yes" at its beginning: enabled is
 * 1), upnp_name (without one the device's name with "_Media", cut to the field), scan_interval,
 * content_scan (-1 when missing) and, for each N from 1 to 4, upnp_av_folder_N, upnp_av_share_N,
 * upnp_av_path_N and content_type_N. From "network": code_page (437 when missing), port and
 * version; the version of the factory's settings in /usr/local counts before that one.
 * 0; -1: no record, or the settings file can not be opened. */
FSH_API int ReadUPnPAVConf(UPnPAVSettings* settings);

/* Saves the keys of section "media", unchecked: callers see to it that content types are 0 to 3.
 * 0; -1: no record, or the settings file can not be written. */
FSH_API int SaveUPnPAVConf(const UPnPAVSettings* settings);

/* Puts the factory's values in the place of the keys of ReadUPnPAVConf in section "media", but for
 * content_scan and the content types, and stops the server by its script. Keys that the factory's
 * settings lack become empty. Does nothing when there are none. */
FSH_API void ResetUPnPAV2Def(void);

/* Sends SIGTERM to the process of /var/run/media_server.pid and waits 4 seconds; neither without
 * one. Before, when remove_db is set or a folder in use lies on a removable share ("HDD" or "FLASH"
 * begin its name), removes the media database and the mark of a finished scan from the first of
 * volumes 1, 2 and 5 that is mounted. With null the settings are read; the database stays when they
 * can not be. */
FSH_API void StopUPnPDaemon(const UPnPAVSettings* settings, int remove_db);

/* Makes the scanner look through the folders: sends SIGHUP to the process of
 * /var/run/media_scan.pid. The result of kill(2); a number below 1 from the file, which is no
 * process to be signalled; -1: no file, or no process number in it. */
FSH_API int ScanUPnPAVServer(void);

/* Writes the port of the web pages into /etc/media.conf and sends SIGHUP to the process of
 * /var/run/media_server.pid, which then takes up address and port; the signal is sent even when the
 * port can not be read. Returns as ScanUPnPAVServer. */
FSH_API int ReloadUPnPAVServerIP(void);

/* Removes the mark of a finished scan from the first usable volume (1, 2, 5, 3, 4), so that the
 * server looks through everything when it starts next. */
FSH_API void RemoveDBOKFlag(void);

/* Stops the server as StopUPnPDaemon, its database removed unless keep_db is set and no folder in
 * use lies on a removable share, and waits 4 seconds. When it is on, writes /etc/media.conf, waits
 * another 4 seconds and starts the server by its script in a process of its own. Folders that do
 * not resolve are left out; without any the old list stays. The database lies on the first of
 * volumes 1, 2 and 5 that is mounted; with only volumes 3 and 4 it is built anew, also with keep_db
 * set, in the first folder's share that is no read-only NTFS, or in /tmp. A blank in the path of
 * that share splits the command which removes the old one.
 * 0; -1: the settings file can not be opened, and nothing was stopped. */
FSH_API int ResetUPnPAV(int keep_db);

FSH_END_DECLS

#endif
