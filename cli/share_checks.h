// What fileshare refuses about shares, besides what names.h refuses.
#ifndef FILESHARE_SHARE_CHECKS_H
#define FILESHARE_SHARE_CHECKS_H

#include <string>

namespace fileshare {

// Why a share can not be called so; empty when it can. Samba has sections of its own, and a share
// of such a name would take the place of one.
std::string new_share_name_fault(const std::string& name);

// Why the folder of a share can not be removed; empty when it can. The library's command takes the
// path as it stands, so it must be one word to the shell, and not a volume's whole data folder.
std::string removal_fault(const std::string& path);

}  // namespace fileshare

#endif
