// Shares that a change left half written.
#ifndef FILESHARE_SHARE_REPAIR_H
#define FILESHARE_SHARE_REPAIR_H

namespace fileshare {

// The registry says which shares there are; a change writes it first. Under the locks of the dead
// change: takes what is left of shares that are not registered any more, or not on that volume,
// off the lists of the volumes and out of the files of Samba and the Apple service. The status.
int drop_unregistered_shares();

// After the locks: writes each registered share anew whose folder is missing, or whose entry on its
// volume, for Samba or for Apple clients is not what the registry says. The status.
int complete_shares();

}  // namespace fileshare

#endif
