/* The photo album and its users. */
#ifndef FILESHARING_ALBUM_H
#define FILESHARING_ALBUM_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

FSH_API int ReadPhotoAlbumConf(PhotoAlbumConf* settings);
FSH_API int SavePhotoAlbumConf(const PhotoAlbumConf* settings);
FSH_API int CheckPhotoAlbum(int volume);
FSH_API int ResetPhotoAlbum(const PhotoAlbumConf* settings);

FSH_API int NumOfAlbumUser(void);
FSH_API int AlbumUserExist(const char* name);
FSH_API int GetAlbumUserInfo(AlbumUserInfo* record);
FSH_API int AddAlbumUser(const AlbumUserInfo* record);
FSH_API int DelAlbumUser(const char* name);
FSH_API int UpdateAlbumUser(const char* old_name, const AlbumUserInfo* record);
FSH_API int AddFolderToAlbumUser(const char* name, const char* folder, int right);
FSH_API int DelFolderFromAlbumUser(const char* name, const char* folder);
FSH_API int UpdateAlbumUserConf(const char* sub);
FSH_API int RightOfFolderOnAlbumUser(const char* name, const char* folder);
FSH_API int GetAllAlbumUsers(AlbumUserInfo** head);
FSH_API void FreeAlbumUserList(AlbumUserInfo* head);
FSH_API int CheckAlbumThumbFiles(const char* folder);
FSH_API int de_dotdot(char* path);

FSH_END_DECLS

#endif
