/* Shares: the registry, the daemons' entries, access lists, the paths of folders, NFS exports. The
 * conventions of types.h apply. */
#ifndef FILESHARING_SHARES_H
#define FILESHARING_SHARES_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Registry ------------------------------------------------------------------------------- */

/* A share is a line of /etc/share.info, or of /etc/win_share.info when it is a removable share: its
 * name begins with "FLASH" or "HDD", wherever its folder is. The line is
 *
 *     NAME=SUFFIXED:VOLUME:COMMENT:PATH:GROUP:RIGHTS,GROUP:RIGHTS...
 *
 * with the fields of ShareInfo; the access list and the ":" before it may be missing. PATH is
 * written with a "/" at its end: one of 257 characters without it is cut when it is read, so that
 * the folder can be shared again, and DelShare leaves its AFP line. No name or comment may hold a
 * ":", "=" or line feed: nothing here looks.
 *
 * The volume of a share that is not removable has a line of its own for it in
 * /harddisk/volume_N/conf/share.info, without the first four characters of the value ("0:1:";
 * volumes have one digit). The name in it depends on the operation. AddShare, a renaming and a
 * change of volume take the whole one. AddShareWithGroup, and what writes a share by it, cuts one
 * with the suffixed mark at its last "~", and that of the folder "/" or "/public" with a 1 or 2 in
 * it at its last blank ("DISK 1"). DelShare cuts two characters off with the mark and nothing else.
 * DelGroupFromShare takes "DISK" for every name that begins so, and else the whole one. Lines under
 * another name stay.
 *
 * Who reads the registry makes /etc/win_share.info, empty and with mode 0644, when there is none,
 * and takes no lock. One of the two files may be missing. Who changes it holds the locks of
 * FSH_FILE_SHARE and FSH_FILE_SMB, and restores those two files of the configuration volume after a
 * failure: not /etc/share.info where that is a file of its own, and not AppleVolumes.conf. A busy
 * lock ends the operation at once, with the locks taken before it still taken. */

/* Makes a new share of the name, comment, path and volume of the record, with its folder, for the
 * group "administrators"; suffixed is 0 in its line. record->path becomes the path as the disk
 * spells it when that changes no letter case (so doubled slashes go), else it stays as given. The
 * folder is made with mode 775 for admin and everyone; each folder above the path's last "/", up to
 * /harddisk, gets owner 502, group 501 and mode 0777. A removable share has no folder made and no
 * line on its volume. Takes the locks, but no backup: a failure restores what the last operation
 * that took one had saved. Waits four seconds.
 * 0; FSH_ARGUMENT (20): record is missing; FSH_SHARE_EXISTS (48): in whatever letter case;
 * FSH_SHARE_NOT_ADDED (50): a lock is taken, the volume has no data folder, no memory;
 * FSH_FOLDER_SHARED (56): dir_shared said so or failed; FSH_NO_TEMPORARY (22), FSH_CANNOT_OPEN
 * (21), FSH_SMB_SHARES_NOT_WRITTEN (45), FSH_AFP_SHARES_NOT_WRITTEN (19) as SetSmbShare and
 * SetAFPShare; FSH_FAILED (-1): its line in the registry can not be written, as for an empty name,
 * and the share has no folder and no sections then. Whether its line on the volume can is not told.
 */
FSH_API unsigned AddShare(ShareInfo* record);

/* Writes a share with the access list in record->groups: its line, the line on its volume, its SMB
 * section and its AFP line, each in the place of an old one. Takes no lock. Waits four seconds.
 * 0; FSH_ARGUMENT (20): record or its name is missing; FSH_NO_MEMORY (23); 22, 21, 45 and 19 as
 * AddShare. That one of the two lines can not be written is not told. */
FSH_API unsigned AddShareWithGroup(ShareInfo* record);

/* Gives a share the name, comment, path, volume and suffixed mark of the record; its access list
 * stays, and record->groups is not looked at. With a new name record->suffixed becomes 0. The new
 * folder is made and opened as AddShare does, the old one stays; so do, after a change of name, the
 * AFP line and a removable share's registry line. Takes the locks and a backup. Waits four seconds.
 * Sets SIGCHLD to its default action.
 * 0; FSH_ARGUMENT (20): an argument or a name is missing; FSH_SHARE_UNKNOWN (49): no share
 * old_name; FSH_SHARE_EXISTS (48): the new name is taken, perhaps by this share in another letter
 * case, or a lock is; FSH_SHARE_UNREGISTERED (47) or FSH_MALFORMED (24): old_name is not found in
 * this letter case, or its line can not be parsed; FSH_SHARE_NOT_ADDED (50): the volume has no data
 * folder, or no memory; FSH_FAILED (-1) or FSH_COPY_BACK_FAILED (-4): a name could not be changed
 * or deleted in a file; FSH_CANNOT_OPEN (21): the volume that the share leaves has no list; 23, 22,
 * 21, 45 and 19 as AddShareWithGroup. */
FSH_API unsigned UpdateShare(const char* old_name, ShareInfo* record);

/* Deletes a share; its folder stays. When it was the Time Machine share, mDNS stops telling of it.
 * Takes the locks and a backup. Waits two seconds. Leaves a stream open until the process ends.
 * 0; FSH_ARGUMENT (20): name is missing or empty; FSH_SHARE_UNKNOWN (49); FSH_SHARE_NOT_DELETED
 * (44): a lock is taken; FSH_MALFORMED (24): its line can not be parsed; FSH_CANNOT_OPEN (21): a
 * file, such as the list of its volume; FSH_NO_TEMPORARY (22); FSH_NO_MEMORY (23);
 * FSH_COPY_BACK_FAILED (-4): a registry file; FSH_FAILED (-1): the SMB file can not be written;
 * FSH_AFP_SHARES_NOT_WRITTEN (19). */
FSH_API unsigned DelShare(const char* name);

/* Deletes the shares one by one, in the order of GetAllShare, up to the one called "ADMIN" on its
 * volume: that and those after it stay. With remove_folders each share's folder is removed too, by
 * a command that takes the path as it stands: a blank in it splits it, and the path "/" is the
 * whole data folder of the volume; it is for the caller to refuse those.
 * 0; a failure of GetAllShare or of a DelShare, which ends the run. */
FSH_API unsigned DelAllShare(int remove_folders);

/* Deletes the section of every share from smb.conf and nothing else. Takes no lock.
 * 0; FSH_SHARE_NOT_DELETED (44): the file can not be read or written; or a failure of
 * GetAllShare. */
FSH_API unsigned DelAllShareFromSMB(void);

/* Fills in suffixed, volume, comment and path of the share record->name, in any letter case; not
 * groups. Texts are cut to their fields.
 * 0; FSH_ARGUMENT (20): record is missing; FSH_CANNOT_OPEN (21): neither file; FSH_MALFORMED (24):
 * no such share, or its line can not be parsed; FSH_NO_MEMORY (23). */
FSH_API unsigned GetShareInfo(ShareInfo* record);

/* List the names of all shares, in the order of the files, without those over 20 characters.
 * 0; FSH_ARGUMENT (20): head is missing; FSH_CANNOT_OPEN (21): neither file; FSH_NO_MEMORY (23).
 * After a failure the list is empty. */
FSH_API unsigned GetShareNameList(ShareNameItem** head);
FSH_API void FreeShareNameList(ShareNameItem* head);

/* List all shares with their access lists, in the order of the files; names are cut to 20
 * characters. GetExtShare leaves out each line with "FLASH_1" to "FLASH_4" anywhere in it. A line
 * of /etc/share.info that can not be parsed drops that file's shares from the list, without a word.
 * 0; FSH_ARGUMENT (20): head is missing, or a line of /etc/win_share.info has no value;
 * FSH_CANNOT_OPEN (21): neither file; FSH_NO_MEMORY (23); FSH_MALFORMED (24): a line of
 * /etc/win_share.info. After a failure the list is empty. */
FSH_API unsigned GetAllShare(ShareInfo** head);
FSH_API unsigned GetExtShare(ShareInfo** head);

/* Frees the records and their access lists, or an access list. */
FSH_API void FreeShareList(ShareInfo* head);
FSH_API void FreeShGrpList(ShareGroup* head);

/* 1 when there is a share of that name, in whatever letter case, else 0. Longer names in the
 * registry count by their first 20 characters. */
FSH_API int ShareExist(const char* name);

/* The length of GetShareNameList's list; FSH_NO_SHARE_LIST (-3): it could not be read. */
FSH_API unsigned GetNumOfShares(void);

/* 1 when a share has exactly that path, given with or without the "/" at its end, on that volume; 0
 * when none has; -1: path is missing or empty, or a share could not be read before one was found.
 */
FSH_API int dir_shared(const char* path, int volume);

/* The name of the first share of a volume, 1 to 5, whose path is "/public/" or "/public" in any
 * letter case; blanks are written as "%20". The caller frees it with free(3). Null: no such share,
 * or one before it could not be read. */
FSH_API char* GetPublicSh(int volume);

/* Parses the value of a registry line, with or without its line end, into suffixed, volume,
 * comment, path and groups of the record; groups is null without an access list, or when it is
 * malformed. The caller frees groups with FreeShGrpList. 0; FSH_ARGUMENT (20): value is missing or
 * empty, or record is missing; FSH_MALFORMED (24): a field is missing; record stays as it was;
 * FSH_NO_MEMORY (23). */
FSH_API unsigned ShareStringPar(const char* value, ShareInfo* record);

/* Parses an access list. The caller frees it with FreeShGrpList. Null: it is empty, an item has no
 * ":", or there is no memory. */
FSH_API ShareGroup* GetShGroup(const char* access_list);

/* ---- SMB and AFP sections ------------------------------------------------------------------- */

/* A share is a section of /etc/samba/smb.conf, see smb.conf(5), and a line of
 * /etc/netatalk/AppleVolumes.conf: the quoted folder, "[NAME]" in quotes, then "rwlist:" with the
 * groups that may write and "allow:" with those that may enter. "administrators" stands first in
 * each of these lists and is not repeated from the access list.
 *
 * A removable share has its section in /etc/samba/user_smb.conf, but whatever writes a share whole
 * (AddShare, AddShareWithGroup, UpdateShare, the functions that add groups) writes one into
 * smb.conf, which Samba reads later. Nothing but DelAllShareFromSMB takes that away again:
 * DelGroupFromShare, DelShare and DelWinShares touch user_smb.conf alone. In smb.conf a right that
 * was taken away stands until AddShareWithGroup writes the share again, and a share that was
 * deleted stays.
 *
 * The functions of this section take no lock: the callers hold those of FSH_FILE_SHARE and
 * FSH_FILE_SMB. After each file that they copied back they wait two seconds, which gives the daemon
 * time to see it. Where a copy fails, the file stays as it was. */

/* Put the share into smb.conf or AppleVolumes.conf: in the place of its old section or line, whose
 * header stays as it was, or at the end. All else in the file stays byte for byte. Used of the
 * record: name, comment, path, volume, groups. With read_only set, the groups with rights 7 may not
 * write, whatever the list says; all may still enter. Set SIGCHLD to its default action.
 * WriteSmbShare and WriteAFPShare are the same with read_only 0.
 * 0; FSH_ARGUMENT (20): record is missing; FSH_NO_TEMPORARY (22); FSH_CANNOT_OPEN (21): the file or
 * the temporary file; FSH_SMB_SHARES_NOT_WRITTEN (45) or FSH_AFP_SHARES_NOT_WRITTEN (19): the file
 * could not be read or copied back, or there is no memory. */
FSH_API unsigned SetSmbShare(const ShareInfo* record, unsigned read_only);
FSH_API unsigned SetAFPShare(const ShareInfo* record, unsigned read_only);
FSH_API unsigned WriteSmbShare(const ShareInfo* record);
FSH_API unsigned WriteAFPShare(const ShareInfo* record);

/* Write the section without its header, or the line, to a stream of the caller's, which stays open;
 * whether that worked, ferror(3) tells. Nothing is written when record or file is missing. */
FSH_API void write_share(const ShareInfo* record, FILE* file, unsigned read_only);
FSH_API void write_afp(const ShareInfo* record, FILE* file, unsigned read_only);

/* Deletes the section of a share from smb.conf, or of a removable share (its name begins with
 * "FLASH" or "HDD") from /etc/samba/user_smb.conf. Does not wait.
 * 0, also when there is none; FSH_ARGUMENT (20): name is missing or empty; FSH_FAILED (-1): the
 * file can not be read or written. */
FSH_API unsigned DelShareFromSMB(const char* name);

/* Deletes the lines of AppleVolumes.conf that begin with key: the folder in quotes, the closing one
 * included, so that no folder whose name is longer matches. The file is rewritten even without such
 * a line. SIGCHLD stays as it is; while it is ignored, the copy counts as failed. DelShare and
 * DelAllShare do the same.
 * 0; FSH_ARGUMENT (20): key is missing or empty; FSH_NO_TEMPORARY (22), FSH_CANNOT_OPEN (21),
 * FSH_AFP_SHARES_NOT_WRITTEN (19) as SetAFPShare. */
FSH_API unsigned DelShareFromAFP(const char* key);

/* Make shares of the mounted partitions of a USB disk, and delete them again. Partition P of the
 * disk is mounted at /harddisk/volume_3/data/PREFIX_N_P, or volume_4, and PREFIX_N_P is the name of
 * the share; N is index + 1, index is 0 (volume 3) or 1 (volume 4). All users may read, and write
 * when /proc/mounts says so. The entries go to /etc/win_share.info, /etc/samba/user_smb.conf and
 * AppleVolumes.conf; adding appends them, without looking for old ones, and does not wait.
 * AddWinShares: 0; -1: prefix is missing, a file could not be opened, or not all was written.
 * DelWinShares deletes the partitions 1 to count: 0, whatever the deletions gave; -1: prefix is
 * missing, or no memory. */
FSH_API int AddWinShares(const char* prefix, int index);
FSH_API int DelWinShares(const char* prefix, int index, int count);

/* ---- Access lists --------------------------------------------------------------------------- */

/* The access list of a share names the groups that may use it, with their rights (ShareRights): its
 * registry line carries it, and with it the line on its volume, the SMB section and the AFP line.
 * Group names compare in their letter case; a share has to be named in its letter case too, else
 * FSH_SHARE_UNREGISTERED (47) tells that it is not in the registry. */

/* Puts a group at the end of the access list of a share, with rights 5 when read_only is set, else
 * 7, and writes the share anew (AddShareWithGroup). Takes no lock: for callers that hold those of
 * FSH_FILE_SHARE and FSH_FILE_SMB. Waits four seconds.
 * 0; FSH_ARGUMENT (20): a name is missing or empty; FSH_SHARE_UNKNOWN (49); FSH_ACCESS_EXISTS (55):
 * the group is on the list; FSH_SHARE_UNREGISTERED (47), FSH_MALFORMED (24), FSH_NO_MEMORY (23);
 * 22, 21, 45 and 19 as AddShareWithGroup. */
FSH_API unsigned AddGroupToShare(const char* group, const char* share, int read_only);

/* AddGroupToShare for count groups, or count shares, in order: all of them, or after a failure none
 * (as far as a restore reaches: see above). Take the locks and a backup.
 * 0; FSH_ARGUMENT (20): an argument is missing or count is below 1; FSH_SHARE_UNKNOWN (49);
 * FSH_ADD_ACCESS_BUSY (51): a lock is taken, which is found out before a missing share of shares;
 * the code of the AddGroupToShare that failed. */
FSH_API unsigned AddGroupsToShare(const char* share, const char* const* groups, int count,
                                  int read_only);
FSH_API unsigned AddGroupToShares(const char* group, const char* const* shares, int count,
                                  int read_only);

/* Takes a group off the access list of a share, in four steps: the registry line, the line on its
 * volume (a removable share gets one here), the lists in its SMB section, those in its AFP line. A
 * step that fails ends it, and the earlier ones stay done. The lists of the AFP line have another
 * form than SetAFPShare gives them: names without quotes, in rwlist every group that stays, in
 * allow those with rights other than 5. A group that is not on the list changes that alone. Takes
 * no lock, as AddGroupToShare. Sets SIGCHLD to its default action. Does not wait. 0; FSH_ARGUMENT
 * (20): a name is missing or empty; FSH_SHARE_UNKNOWN (49); FSH_SHARE_UNREGISTERED (47);
 * FSH_MALFORMED (24): the share's line; FSH_NO_TEMPORARY (22); FSH_CANNOT_OPEN (21): an SMB or AFP
 * file or a temporary one; FSH_ACCESS_NOT_REMOVED (40): a file could not be written; FSH_NO_MEMORY
 * (23). */
FSH_API unsigned DelGroupFromShare(const char* group, const char* share);

/* DelGroupFromShare for count groups, or count shares, as AddGroupsToShare and AddGroupToShares.
 * 0; 20 and 49 as there; FSH_REMOVE_ACCESS_BUSY (52): a lock is taken; the code of the
 * DelGroupFromShare that failed. */
FSH_API unsigned DelGroupsFromShare(const char* share, const char* const* groups, int count);
FSH_API unsigned DelGroupFromShares(const char* group, const char* const* shares, int count);

/* The access list of the share record->name, in record->groups; FreeShareGrpInfo or FreeShGrpList
 * frees it. Of the two registry files the first where the name has a value counts.
 * 0; FSH_ARGUMENT (20): record or its name is missing; FSH_CANNOT_OPEN (21): neither file;
 * FSH_NO_MEMORY (23); FSH_MALFORMED (24): its line; FSH_SHARE_UNREGISTERED (47): not there in this
 * letter case; FSH_SHARE_UNKNOWN (49): not in any. groups is null after a failure. */
FSH_API unsigned GetShareGroup(ShareGroupInfo* record);

/* Fills in the whole record of the share record->name, its access list too, which FreeShGrpList
 * frees. Results as GetShareGroup, but a share that is only there in another letter case gives 0
 * with the record as it was. */
FSH_API unsigned GetShareWithGroup(ShareInfo* record);

/* The shares of the group record->name with its rights in each, in the order of GetAllShare: at
 * most FSH_MOST_GROUP_SHARES. FreeGrpShareInfo frees the contents. 0; FSH_ARGUMENT (20): record or
 * its name is missing; FSH_NO_MEMORY (23); a failure of GetAllShare. count is 0 and shares null
 * after a failure. */
FSH_API unsigned GetGroupShareInfo(GroupShareInfo* record);

/* 1 when the group "everyone" is on the access list of the volume's public share ("DISK 1" for
 * volume 1, "DISK" for volume 5), else 0. */
FSH_API int EveryoneInDiskSh(int volume);

/* ---- Path translation ----------------------------------------------------------------------- */

/* Callers name folders in any letter case; the volumes tell cases apart. These functions spell the
 * parts of a path as the disk has them. An entry of a folder matches a name when both have as many
 * bytes and differ at most in the case of letters that strequal of libsamba folds: of UTF-8 the
 * Latin, Greek, Cyrillic, Armenian and full-width ones; other bytes match themselves. Of several
 * entries the one that the folder lists first counts. "." and ".." never match. A path is rewritten
 * in place and never grows. */

/* The component behind the slash at *slash, up to the next slash or the end, as a heap string that
 * the caller frees with free(3). Null: no memory, or there is no text at slash. */
FSH_API char* getname(const char* slash);

/* Looks an entry of a folder up. 1: *stored is its name on disk, for the caller to free with
 * free(3); 0: no such entry, the folder can not be read, or an argument is missing; *stored stays
 * as it was. */
FSH_API int case_dir(const char* directory, const char* name, char** stored);

/* Spells the components of an absolute path as they are on disk, up to the first that is not there;
 * the rest of the path stays. Up to there each run of slashes becomes one; what stands before the
 * first slash is lost. 0: the letter case of a component changed; -1: of none; or the path is as it
 * was, since it is missing or has no slash, or there is no memory. */
FSH_API int trans_dir(char* path);

/* The same for what stands behind prefix, which is taken as it is and begins the path; null is no
 * prefix. -1 also when the path is empty or does not hold the prefix, or there is no memory; it is
 * unchanged then. */
FSH_API int trans_dir_with_prefix(const char* prefix, char* path);

/* Spells the last component alone; slashes behind it and doubled ones before it go. 1: its letter
 * case changed; 0: it did not, or there is no such entry; -1: path is missing or empty, or no
 * memory. */
FSH_API int simple_trans_dir(char* path);

/* Spells the name of an entry of a folder. 0: there is such an entry; -1: there is none, or an
 * argument is missing or empty; name is unchanged then. */
FSH_API int trans_one_item(const char* directory, char* name);

/* ---- NFS exports; no locks ------------------------------------------------------------------ */

/* *enabled becomes 1 when NFS is on (key nfs of section "network" is "yes"), else 0, also without a
 * settings file. 0; -1: enabled is missing. */
FSH_API int ReadNFSConf(unsigned* enabled);

/* 1 when NFS is on, else 0. */
FSH_API int IsNFSEnabled(void);

/* Saves the switch. On: a process of its own starts portmap, nfsd and mountd and exports the shares
 * a second later. Off: withdraws the exports; the daemons go on running. 0; -1: enabled is missing,
 * or the settings file is not written. */
FSH_API int SaveNFSConf(const unsigned* enabled);

/* Writes /etc/exports, exports(5), and makes it known, whether NFS is on or off: each share of the
 * list to which the group "everyone" has access, for every host; read only with rights code 5. With
 * a null list the registry's shares; a list given stays the caller's.
 * 0; FSH_FAILED (-1): the registry can not be read or holds no share, or the file could not be
 * copied back; FSH_NO_TEMPORARY (22); FSH_CANNOT_OPEN (21): the temporary file. */
FSH_API unsigned UpdateNFSConf(const ShareInfo* list);

/* The entries of section [NFS] of /etc/nfs.info, lines "name=host:mask:flags", as a list that
 * FreeNFSShList frees. Names of more than 20 characters are left out, hosts are cut to 16.
 * 0, also without the section; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21); FSH_FAILED (-1): a line
 * that is no entry, a blank one too, or no memory; *head is null then. */
FSH_API unsigned ReadNFSShares(NfsShare** head);

/* Fills the entry of the name entry->name.
 * 0; FSH_ARGUMENT (20); FSH_CANNOT_OPEN (21); FSH_FAILED (-1): no such entry;
 * FSH_MALFORMED (24). */
FSH_API unsigned ReadNFSShare(NfsShare* entry);

/* Tidies and checks an entry: blanks go from the host, and "...", "0.0.0.0" and nothing mean every
 * host. 0; -1: no entry; -2: the host is no IPv4 address; -3: the mask is not 0 to 32. */
FSH_API int CheckNFSShare(NfsShare* entry);

FSH_API void FreeNFSShList(NfsShare* head);

/* They change nothing: entries are read only. 0, or -1 for a null pointer. */
FSH_API int AddNFSShare(const void* entry);
FSH_API int DelNFSShare(const void* entry);

/* They change nothing: 0, and the value itself. */
FSH_API int UpdateNFSShare(void);
FSH_API unsigned ResetNFSShares(unsigned value);

FSH_END_DECLS

#endif
