/* Records that cross the interface of libfilesharing.
 *
 * Conventions for every header of this library:
 *
 *  1. Strings are terminated with a zero byte. A field `char x[N]` holds N - 1 characters at most;
 *     the library cuts what it stores to the field and always terminates it.
 *  2. A missing argument is a null pointer. Unless a function says that it may be null, it
 *     answers a null pointer with a result code.
 *  3. Functions return 0 for success or a code of results.h. Where the type is unsigned, -1 is
 *     4294967295.
 *  4. Lists and strings that the library returns are made with malloc(3). The caller owns them and
 *     releases them with the free function named at the record.
 *  5. Nothing is kept between calls but the counts of AddUsersToSysGroup (groups.h): that function,
 *     AddUsersToGroup and AddUser are for one call per process. Functions that change files say
 *     which locks they take (Lock in conf.h); they fail at once when a lock is taken. Only changes
 *     of the album's users wait for theirs, up to 28 seconds (album.h).
 *  6. Functions are not safe to call from several threads: they use fork(2), the action of SIGCHLD
 *     and the C library's account look-ups. The library is made for short-lived processes.
 *  7. A web server may start pages with SIGCHLD ignored: set it to its default action before the
 *     first call, signal(SIGCHLD, SIG_DFL). Else nobody learns how a command ended, and these fail
 *     with everything written: ResetFTP, SetAFPDConf, ResetItune, DelShareFromAFP, BackupConFiles,
 *     RestoreConFiles, the functions of groups.h that change one file, and those that change the
 *     folders of the album's users, whose lock stays. DelShare and DelAllShare fail half-way, and
 *     the other changes of groups.h fail and are undone. Functions that set the action themselves
 *     say so; it stays set.
 *
 * Layouts are part of the interface: no field moves or changes its size.
 */
#ifndef FILESHARING_TYPES_H
#define FILESHARING_TYPES_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#define FSH_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define FSH_LAYOUT(condition) static_assert(condition, #condition)
#define FSH_BEGIN_DECLS extern "C" {
#define FSH_END_DECLS }
#else
#define FSH_LAYOUT(condition) _Static_assert(condition, #condition)
#define FSH_BEGIN_DECLS
#define FSH_END_DECLS
#endif

/* The size of a record whose last member is a pointer or that is aligned like one. */
#define FSH_SIZE(on_32_bit, on_64_bit) (sizeof(void*) == 4 ? (on_32_bit) : (on_64_bit))

FSH_BEGIN_DECLS

/* ---- Users ---------------------------------------------------------------------------------- */

/* A user of the server. */
typedef struct UserInfo {
  char name[21];
  char description[49]; /* full name or comment; field 5 of the line in passwd(5) */
  char password[18];    /* plain; see AddUser, UpdateUser and GetUserInfo in users.h */
  uint32_t quota;       /* megabytes, 0 for none */
  int32_t uid;
} UserInfo;
FSH_LAYOUT(sizeof(UserInfo) == 96 && offsetof(UserInfo, quota) == 88);

/* A list of user names; FreeUserNameList. */
typedef struct UserNameItem {
  char name[24];
  struct UserNameItem* next;
} UserNameItem;
FSH_LAYOUT(sizeof(UserNameItem) == FSH_SIZE(28, 32));

/* The users of a group, or the groups of a user; FreeGroupUserInfo, FreeUserGroupInfo. */
typedef struct GroupUserInfo {
  char name[24]; /* the group's or the user's, set by the caller */
  int32_t count;
  char** list; /* count strings in an array for 255; null when there are none */
} GroupUserInfo;
FSH_LAYOUT(sizeof(GroupUserInfo) == FSH_SIZE(32, 40));

/* A list of users with their groups; FreeUserList. */
typedef struct UserItem {
  UserInfo user;
  GroupUserInfo* groups;
  struct UserItem* next;
} UserItem;
FSH_LAYOUT(sizeof(UserItem) == FSH_SIZE(104, 112));

/* ---- Groups --------------------------------------------------------------------------------- */

/* A list of group names; FreeGrpNameList. */
typedef struct GroupNameItem {
  char name[28]; /* at most 20 characters are ever stored */
  struct GroupNameItem* next;
} GroupNameItem;
FSH_LAYOUT(sizeof(GroupNameItem) == FSH_SIZE(32, 40));

#define FSH_MOST_GROUP_SHARES 255

/* The shares of a group; FreeGrpShareInfo. */
typedef struct GroupShareInfo {
  char name[24]; /* the group's, set by the caller */
  int32_t count;
  char** shares;                         /* count share names; null when there are none */
  int32_t rights[FSH_MOST_GROUP_SHARES]; /* the group's rights code in each share */
} GroupShareInfo;
FSH_LAYOUT(sizeof(GroupShareInfo) == FSH_SIZE(1052, 1064));

/* A list of groups with their members and shares. It is never freed: see FreeGrpList. */
typedef struct GroupItem {
  char name[24];
  int32_t gid; /* -5 when /etc/group does not know the group */
  GroupUserInfo* users;
  GroupShareInfo* shares; /* null when the group is on no share */
  struct GroupItem* next;
} GroupItem;
FSH_LAYOUT(sizeof(GroupItem) == FSH_SIZE(40, 56));

/* ---- Shares --------------------------------------------------------------------------------- */

enum ShareRights { FSH_READ_ONLY = 5, FSH_READ_WRITE = 7 };

/* An access list: groups with their rights codes; FreeShGrpList. */
typedef struct ShareGroup {
  char name[24];
  int32_t rights; /* 7 read and write, 5 read only */
  struct ShareGroup* next;
} ShareGroup;
FSH_LAYOUT(sizeof(ShareGroup) == FSH_SIZE(32, 40));

/* A share, and a list of shares; FreeShareList. */
typedef struct ShareInfo {
  char name[21];
  char comment[49];
  char path[258];     /* in the volume's data folder, begins with "/"; 256 without one at its end */
  int32_t volume;     /* N of /harddisk/volume_N */
  int32_t suffixed;   /* non-zero: the name carries "~" and a character, unlike the volume's own */
  ShareGroup* groups; /* access list; filled by the functions that say so */
  struct ShareInfo* next;
} ShareInfo;
FSH_LAYOUT(offsetof(ShareInfo, volume) == 328 && sizeof(ShareInfo) == FSH_SIZE(344, 352));

/* A list of share names; FreeShareNameList. */
typedef struct ShareNameItem {
  char name[24];
  struct ShareNameItem* next;
} ShareNameItem;
FSH_LAYOUT(sizeof(ShareNameItem) == FSH_SIZE(28, 32));

/* The groups of a share; FreeShareGrpInfo. */
typedef struct ShareGroupInfo {
  char name[24]; /* the share's, set by the caller */
  ShareGroup* groups;
} ShareGroupInfo;
FSH_LAYOUT(sizeof(ShareGroupInfo) == FSH_SIZE(28, 32));

/* An entry of /etc/nfs.info; FreeNFSShList. */
typedef struct NfsShare {
  char name[21];
  char host[17]; /* IPv4 address in dotted form, empty for every host */
  int32_t mask;  /* prefix length, 0 to 32 */
  int32_t flags; /* kept as read */
  struct NfsShare* next;
} NfsShare;
FSH_LAYOUT(offsetof(NfsShare, mask) == 40 && sizeof(NfsShare) == FSH_SIZE(52, 56));

/* ---- Services ------------------------------------------------------------------------------- */

/* Samba's global settings; clear the whole record before use. */
typedef struct SambaSettings {
  char msn_enable[8];   /* "yes" or "no": the service is on */
  int32_t code_page;    /* client code page number */
  char wins_enable[5];  /* "yes" or "no" */
  char wins_server[17]; /* dotted decimal, may be empty */
  char w_d_name[17];    /* workgroup or domain */
  char printer_name[21];
} SambaSettings;
FSH_LAYOUT(sizeof(SambaSettings) == 72 && offsetof(SambaSettings, wins_enable) == 12);

typedef struct FtpSettings {
  int32_t enabled;
  int32_t reserved;
  int32_t anonymous;
  int32_t language;  /* client code page */
  int32_t port;      /* control port: 21, or 1024 to 65535 */
  int32_t data_port; /* 20, or 1024 to 65535 */
  int32_t ssl;       /* non-zero: on */
  int32_t bandwidth; /* kilobytes per second, 0 for no limit */
} FtpSettings;
FSH_LAYOUT(sizeof(FtpSettings) == 32);

typedef struct AfpSettings {
  int32_t enabled;
  int32_t reserved;
  int32_t anonymous; /* guest logins allowed */
  char name[65];     /* server name; empty for the default */
  char unixcode[65]; /* code page of the server's files */
  char maccode[65];  /* code page of the clients */
  char tm_share[21]; /* the Time Machine share; empty for none */
} AfpSettings;
FSH_LAYOUT(offsetof(AfpSettings, tm_share) == 207 && sizeof(AfpSettings) == 228);

/* ---- Media servers and photo album ---------------------------------------------------------- */

#define FSH_MEDIA_FOLDERS 4

typedef struct UPnPAVSettings {
  int32_t enabled;
  char name[36]; /* friendly name, at most 32 characters; 35 when it is made of the device's */
  int32_t folder_used[FSH_MEDIA_FOLDERS];
  char folder_share[FSH_MEDIA_FOLDERS][21];
  char folder_path[FSH_MEDIA_FOLDERS][257]; /* folder references, /SHARE or /SHARE/FOLDER */
  int32_t content_type[FSH_MEDIA_FOLDERS];  /* 0 all, 1 music, 2 pictures, 3 video */
  int32_t content_scan;                     /* -1: automatic rescanning is off */
  int32_t code_page;
  int32_t port; /* of the web server */
  char version[12];
  uint32_t scan_interval;
} UPnPAVSettings;
FSH_LAYOUT(offsetof(UPnPAVSettings, content_type) == 1168 && sizeof(UPnPAVSettings) == 1212);

/* The readers of the two records below clear an area of this size, so the records have it. */
#define FSH_MEDIA_RECORD_SIZE 1212

typedef struct ITunesSettings {
  int32_t enabled;
  char name[33];
  char path[257]; /* folder reference */
  char reserved[FSH_MEDIA_RECORD_SIZE - 294];
} ITunesSettings;
FSH_LAYOUT(offsetof(ITunesSettings, path) == 37 && sizeof(ITunesSettings) == 1212);

typedef struct BroadcastSettings {
  int32_t enabled;
  char name[36]; /* as in UPnPAVSettings */
  int32_t port;
  char path[257];       /* folder reference */
  char play_method[13]; /* "order" for playing in order; anything else shuffles */
  char reserved[FSH_MEDIA_RECORD_SIZE - 314];
} BroadcastSettings;
FSH_LAYOUT(offsetof(BroadcastSettings, path) == 44 && sizeof(BroadcastSettings) == 1212);

typedef struct PhotoAlbumConf {
  int32_t enabled;
  char path[256]; /* folder reference, /SHARE or /SHARE/FOLDER */
  char back_music[256];
} PhotoAlbumConf;
FSH_LAYOUT(sizeof(PhotoAlbumConf) == 516);

/* A user of the photo album, and a list of them; FreeAlbumUserList. */
typedef struct AlbumUserInfo {
  char name[21];
  char information2[16]; /* the record keeps text 2 first, the file text 1 */
  char information1[51];
  int32_t number1;
  int32_t number2;
  struct AlbumUserInfo* next;
} AlbumUserInfo;
FSH_LAYOUT(offsetof(AlbumUserInfo, number1) == 88 && sizeof(AlbumUserInfo) == FSH_SIZE(100, 104));

FSH_END_DECLS

#endif
