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
FSH_API unsigned SetSmbShare(const ShareInfo* record, unsigned read_only);
FSH_API unsigned SetAFPShare(const ShareInfo* record, unsigned read_only);
FSH_API unsigned WriteSmbShare(const ShareInfo* record);
FSH_API unsigned WriteAFPShare(const ShareInfo* record);
FSH_API void write_share(const ShareInfo* record, FILE* file, unsigned read_only);
FSH_API void write_afp(const ShareInfo* record, FILE* file, unsigned read_only);
FSH_API unsigned DelShareFromSMB(const char* name);
FSH_API unsigned DelShareFromAFP(const char* key);
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
FSH_API char* getname(const char* slash);
FSH_API int case_dir(const char* directory, const char* name, char** stored);
FSH_API int trans_dir(char* path);
FSH_API int trans_dir_with_prefix(const char* prefix, char* path);
FSH_API int simple_trans_dir(char* path);
FSH_API int trans_one_item(const char* directory, char* name);

/* ---- NFS exports ---------------------------------------------------------------------------- */
FSH_API int ReadNFSConf(unsigned* enabled);
FSH_API int IsNFSEnabled(void);
FSH_API int SaveNFSConf(const unsigned* enabled);
FSH_API unsigned UpdateNFSConf(ShareInfo* list);
FSH_API unsigned ReadNFSShares(NfsShare** head);
FSH_API unsigned ReadNFSShare(NfsShare* entry);
FSH_API int CheckNFSShare(NfsShare* entry);
FSH_API void FreeNFSShList(NfsShare* head);
FSH_API int AddNFSShare(const void* entry);
FSH_API int DelNFSShare(const void* entry);
FSH_API int UpdateNFSShare(void);
FSH_API unsigned ResetNFSShares(unsigned value);

FSH_END_DECLS

#endif
