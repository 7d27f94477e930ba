// A server without shares: what the other rooms ask about shares until the registry is there.
#include "filesharing/shares.h"

unsigned AddShareWithGroup(ShareInfo*) {
  return FSH_SHARE_UNKNOWN;
}
unsigned GetShareInfo(ShareInfo*) {
  return FSH_MALFORMED;
}
unsigned GetAllShare(ShareInfo** head) {
  *head = nullptr;
  return FSH_OK;
}
void FreeShareList(ShareInfo*) {}
int ShareExist(const char*) {
  return 0;
}
unsigned DelGroupFromShares(const char*, const char* const*, int) {
  return FSH_OK;
}
unsigned GetShareWithGroup(ShareInfo*) {
  return FSH_SHARE_UNKNOWN;
}
unsigned GetGroupShareInfo(GroupShareInfo* record) {
  record->count = 0;
  record->shares = nullptr;
  return FSH_OK;
}
