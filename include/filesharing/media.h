/* Media servers. */
#ifndef FILESHARING_MEDIA_H
#define FILESHARING_MEDIA_H

#include "filesharing/results.h"
#include "filesharing/types.h"

FSH_BEGIN_DECLS

FSH_API int StripShareAndFolder(const char* reference, char* share, char* folder, int check_only);
FSH_API int IsFolderReadonly(const char* text);
FSH_API unsigned StopMediaProcess(int volume, const char* share_prefix, int persist);
FSH_API unsigned StartMediaProcess(unsigned mask);
FSH_API void StopAllMedia(void);
FSH_API void StopAllMedia1(void);

FSH_API int ReadiTuneConf(ITunesSettings* settings);
FSH_API int SaveiTuneConf(const ITunesSettings* settings);
FSH_API int ResetItune(void);

FSH_API int ReadBroadConf(BroadcastSettings* settings);
FSH_API int SaveBroadConf(const BroadcastSettings* settings);
FSH_API unsigned ResetBroadcast(void);

FSH_API int ReadUPnPAVConf(UPnPAVSettings* settings);
FSH_API int SaveUPnPAVConf(const UPnPAVSettings* settings);
FSH_API void ResetUPnPAV2Def(void);
FSH_API void StopUPnPDaemon(const UPnPAVSettings* settings, int remove_db);
FSH_API int ScanUPnPAVServer(void);
FSH_API int ReloadUPnPAVServerIP(void);
FSH_API void RemoveDBOKFlag(void);
FSH_API int ResetUPnPAV(int keep_db);

FSH_END_DECLS

#endif
