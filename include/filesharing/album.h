/* The photo album and its users.
 *
 * The album is a folder of a share that a web page shows. Its users are apart from the system's:
 * each is a section of /etc/album_user.conf with an information line and a line for each folder
 * that the user may see,
 *
 *   [anna]
 *   information=text 1:text 2:number 1:number 2
 *   album=right:folder
 *
 * where folders are relative to the album's folder. What texts, numbers and rights mean is the
 * page's; they are written as they are, so that a line feed in a text is another line of the file.
 * A header needs its "]"; blanks and tabs round the name in it do not count, nor does letter case,
 * as far as strequal of libsamba folds it (path translation in shares.h). A name that could not be
 * found again is nobody's: one that is empty or holds a "]" or a line feed.
 *
 * Functions that change the file hold the lock file /tmp/album.lck: they try 15 times, 2 seconds
 * apart, 28 seconds in all, to take it, and then go on without it. The conventions of types.h
 * apply, above all that about SIGCHLD.
 */
#ifndef FILESHARING_ALBUM_H
#define FILESHARING_ALBUM_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

/* ---- The album; no locks -------------------------------------------------------------------- */

/* Reads section "photo_album" of the settings file; the album is on when album_enable is "yes".
 * 0; -1: no record, the settings file can not be opened, or album_path or album_back_music is
 * missing; the record is partly filled then. */
FSH_API int ReadPhotoAlbumConf(PhotoAlbumConf* settings);

/* Saves the three keys. 0; -1: no record, or the settings file is not written; with a line feed in
 * a text only the switch is. */
FSH_API int SavePhotoAlbumConf(const PhotoAlbumConf* settings);

/* Switches the album off when its share is gone or lies on this volume. Returns 0. */
FSH_API int CheckPhotoAlbum(int volume);

/* Makes the symbolic link /etc/photo_album anew. The link is gone when the album is off, its path
 * has no "/" or its share is unknown. The folder follows the share's path without a slash between
 * them. Returns 0. */
FSH_API int ResetPhotoAlbum(const PhotoAlbumConf* settings);

/* ---- Users ---------------------------------------------------------------------------------- */

/* The number of lines that begin with "[". */
FSH_API int NumOfAlbumUser(void);

/* 1 when there is a user of this name, else 0. */
FSH_API int AlbumUserExist(const char* name);

/* Fills the record of the user record->name, texts cut to their fields.
 * 0, also without the file, which leaves the record as it was; -1: no record, no such user, or an
 * information line that lacks one of its first three colons. */
FSH_API int GetAlbumUserInfo(AlbumUserInfo* record);

/* Adds a user. 0, also when the file can not be opened; -1: no record, the user exists, or the name
 * could not be found again. */
FSH_API int AddAlbumUser(const AlbumUserInfo* record);

/* Deletes a user with the folders. 0; -1: no such user, or the file is not written. */
FSH_API int DelAlbumUser(const char* name);

/* Changes a user's information, and the name when it differs from old_name in any letter. The name
 * stays when the header is not exactly "[old_name]", as with another letter case or with blanks,
 * and the result is 0 all the same. A name that another user has is not refused: of the two the
 * first counts, and DelAlbumUser deletes both.
 * 0; -1: no such user, no record, a new name that could not be found again, a line feed in a text,
 * or the file is not written; FSH_NO_TEMPORARY (22). */
FSH_API int UpdateAlbumUser(const char* old_name, const AlbumUserInfo* record);

/* All users that have an information line, as a list that FreeAlbumUserList frees.
 * 0; -1: the file can not be opened, an information line is malformed, or no memory; *head is null
 * then. */
FSH_API int GetAllAlbumUsers(AlbumUserInfo** head);
FSH_API void FreeAlbumUserList(AlbumUserInfo* head);

/* ---- Folders -------------------------------------------------------------------------------- */

/* Add a folder to a user's, with a right, and remove it. A folder that is there keeps its right; an
 * unknown user has no folders. Blank lines of the file go, and lines of the user's section that are
 * malformed. Lines are read in pieces of 1023 characters: a folder of more than 1015 characters,
 * with a right of one digit, is not found, and is added again each time. A copy that succeeded
 * leaves its temporary file behind.
 * 0, also when no temporary file can be made; -1: an argument is missing, the file can not be
 * opened, or could not be copied back, or was while SIGCHLD is ignored: the lock is not released
 * then, and the next change waits in vain. */
FSH_API int AddFolderToAlbumUser(const char* name, const char* folder, int right);
FSH_API int DelFolderFromAlbumUser(const char* name, const char* folder);

/* Drops the folders of all users that are not below the album's folder with sub, or null for none,
 * behind it.
 * 0, also when there is no such album or folder and nothing is changed; -1: as for
 * AddFolderToAlbumUser, or the current folder, which it leaves for a moment, can not be entered
 * again: nothing is changed then, and it is not left. */
FSH_API int UpdateAlbumUserConf(const char* sub);

/* The right of the user's entry for the folder: 0 without one, 2 for "admin" and any folder. */
FSH_API int RightOfFolderOnAlbumUser(const char* name, const char* folder);

/* Removes the thumbnails and descriptions in the subfolder .Thumb_DB of pictures that are not in
 * the folder. Returns 0. */
FSH_API int CheckAlbumThumbFiles(const char* folder);

/* Takes "//", "." and ".." out of a path, in place, without a look at the disk: "a//b" becomes
 * "a/b", "a/b/../c" "a/c", "/../c" "c" and "/a/b/.." "/a"; "a/.." stays. Returns 0. */
FSH_API int de_dotdot(char* path);

FSH_END_DECLS

#endif
