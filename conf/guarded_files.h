// The account and share files that a change guards: each has a lock, and a copy while the change is
// under way.
#ifndef FILESHARING_CONF_GUARDED_FILES_H
#define FILESHARING_CONF_GUARDED_FILES_H

#include <string>

#include "conf/text.h"
#include "filesharing/conf.h"

namespace filesharing {

struct GuardedFile {
  unsigned bit;      // of FshFile
  const char* lock;  // the lock is taken while this file exists
  const char* name;  // in the conf folder of the configuration volume

  bool is_in(int mask) const { return (static_cast<unsigned>(mask) & bit) != 0; }
  std::string path(const std::string& folder) const { return folder + '/' + name; }
  std::string copy(const std::string& folder) const { return path(folder) + ".ttt"; }
};

// The order in which every process takes the locks, so that no two wait for each other, and in
// which the files are copied.
inline constexpr GuardedFile kGuardedFiles[] = {
    {FSH_FILE_PASSWORD, "/tmp/pass.lck", "passwd"},
    {FSH_FILE_GROUP, "/tmp/grp.lck", "group"},
    {FSH_FILE_USER, "/tmp/user.lck", "usrgrp.info"},
    {FSH_FILE_SHARE, "/tmp/share.lck", "share.info"},
    {FSH_FILE_SMB, "/tmp/smb.lck", "smb.conf"},
    {FSH_FILE_SMBPASS, "/tmp/smbpass.lck", "smbpasswd"},
    {FSH_FILE_WEBPASS, "/tmp/webpass.lck", ".htpasswd"},
};

// What a change locks, copies and restores as a whole: that of a new user, of any other user, of
// groups, of groups with their rights in Samba's shares, and of shares.
inline constexpr int kNewUserFiles =
    FSH_FILE_PASSWORD | FSH_FILE_GROUP | FSH_FILE_USER | FSH_FILE_SMBPASS;
inline constexpr int kUserFiles = kNewUserFiles | FSH_FILE_WEBPASS;
inline constexpr int kGroupFiles = FSH_FILE_GROUP | FSH_FILE_USER;
inline constexpr int kGroupAndSmbFiles = kGroupFiles | FSH_FILE_SMB;
inline constexpr int kShareFiles = FSH_FILE_SHARE | FSH_FILE_SMB;

// All of them, for the recovery; one that holds the files of another comes before it.
inline constexpr int kChanges[] = {kUserFiles, kNewUserFiles, kGroupAndSmbFiles, kGroupFiles,
                                   kShareFiles};

// One attempt to create the lock file. False when it exists or can not be made.
[[nodiscard]] bool take_lock_file(const char* path);

void release_lock_file(const char* path);

}  // namespace filesharing

#endif
