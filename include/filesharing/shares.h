/* Shares. */
#ifndef FILESHARING_SHARES_H
#define FILESHARING_SHARES_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- Registry ------------------------------------------------------------------------------- */
FSH_API unsigned AddShare(ShareInfo* record);
FSH_API unsigned AddShareWithGroup(ShareInfo* record);
FSH_API unsigned UpdateShare(const char* old_name, ShareInfo* record);
FSH_API unsigned DelShare(const char* name);
FSH_API unsigned DelAllShare(int remove_folders);
FSH_API unsigned DelAllShareFromSMB(void);
FSH_API unsigned GetShareInfo(ShareInfo* record);
FSH_API unsigned GetShareNameList(ShareNameItem** head);
FSH_API void FreeShareNameList(ShareNameItem* head);
FSH_API unsigned GetAllShare(ShareInfo** head);
FSH_API unsigned GetExtShare(ShareInfo** head);
FSH_API void FreeShareList(ShareInfo* head);
FSH_API void FreeShGrpList(ShareGroup* head);
FSH_API int ShareExist(const char* name);
FSH_API unsigned GetNumOfShares(void);
FSH_API int dir_shared(const char* path, int volume);
FSH_API char* GetPublicSh(int volume);
FSH_API unsigned ShareStringPar(const char* value, ShareInfo* record);
FSH_API ShareGroup* GetShGroup(const char* access_list);

/* ---- SMB and AFP sections ------------------------------------------------------------------- */

/* A share is a section of /etc/samba/smb.conf, see smb.conf(5), and a line of
 * /etc/netatalk/AppleVolumes.conf: the quoted folder, "[NAME]" in quotes, then "rwlist:" with the
 * groups that may write and "allow:" with those that may enter. "administrators" stands first in
 * each of these lists and is not repeated from the access list.
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
 * a line. SIGCHLD stays as it is; while it is ignored, the copy counts as failed.
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
FSH_API unsigned AddGroupToShare(const char* group, const char* share, int read_only);
FSH_API unsigned AddGroupsToShare(const char* share, const char* const* groups, int count,
                                  int read_only);
FSH_API unsigned AddGroupToShares(const char* group, const char* const* shares, int count,
                                  int read_only);
FSH_API unsigned DelGroupFromShare(const char* group, const char* share);
FSH_API unsigned DelGroupsFromShare(const char* share, const char* const* groups, int count);
FSH_API unsigned DelGroupFromShares(const char* group, const char* const* shares, int count);
FSH_API unsigned GetShareGroup(ShareGroupInfo* record);
FSH_API unsigned GetShareWithGroup(ShareInfo* record);
FSH_API unsigned GetGroupShareInfo(GroupShareInfo* record);
FSH_API int EveryoneInDiskSh(int volume);

/* ---- Path translation ----------------------------------------------------------------------- */

/* Callers name folders in any letter case; the volumes tell cases apart. These functions spell the
 * parts of a path as the disk has them. An entry of a folder matches a name when both are equally
 * long and differ in letter case at most (UTF-8); of several, the one that the folder lists first
 * counts. "." and ".." never match. A path is rewritten in place and never grows. */

/* The component behind the slash at *slash, up to the next slash or the end, as a heap string that
 * the caller frees with free(3). Null: no memory, or there is no text at slash. */
FSH_API char* getname(const char* slash);

/* Looks an entry of a folder up. 1: *stored is its name on disk, for the caller to free with
 * free(3); 0: no such entry, the folder can not be read, or an argument is missing; *stored stays
 * as it was. */
FSH_API int case_dir(const char* directory, const char* name, char** stored);

/* Spells the components of an absolute path as they are on disk, up to the first that is not there;
 * the rest of the path stays. Up to there each run of slashes becomes one; what stands before the
 * first slash is lost. 0: the letter case of a component changed; -1: of none, or path is missing
 * or has no slash. */
FSH_API int trans_dir(char* path);

/* The same for what stands behind prefix, which is taken as it is and begins the path; null is no
 * prefix. -1 also when the path is empty or does not hold the prefix; it is unchanged then. */
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
