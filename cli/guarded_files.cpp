#include "cli/guarded_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "cli/failure.h"
#include "filesharing/conf.h"

namespace fileshare {

const std::vector<GuardedFile>& guarded_files() {
  static const std::vector<GuardedFile> files{
      {"pass", FSH_FILE_PASSWORD, "/tmp/pass.lck", "the system password file", "passwd"},
      {"grp", FSH_FILE_GROUP, "/tmp/grp.lck", "the group file", "group"},
      {"user", FSH_FILE_USER, "/tmp/user.lck", "the lists of users and groups", "usrgrp.info"},
      {"share", FSH_FILE_SHARE, "/tmp/share.lck", "the list of shares", "share.info"},
      {"smb", FSH_FILE_SMB, "/tmp/smb.lck", "Samba's shares", "smb.conf"},
      {"smbpass", FSH_FILE_SMBPASS, "/tmp/smbpass.lck", "Samba's password file", "smbpasswd"},
      {"webpass", FSH_FILE_WEBPASS, "/tmp/webpass.lck", "the web password file", ".htpasswd"},
      {"samba", 0, "/tmp/samba.lck", "Samba's settings", nullptr},
      {"album", 0, "/tmp/album.lck", "the photo album's users", nullptr},
  };
  return files;
}

void add_guarded_names(CLI::App& verb, std::vector<std::string>& names, const char* help,
                       bool backups) {
  std::vector<std::string> known;
  for (const GuardedFile& file : guarded_files()) {
    if (file.bit != 0 || !backups) known.emplace_back(file.name);
  }
  verb.add_option("FILE", names, help)->check(CLI::IsMember(known));
}

bool is_taken(const GuardedFile& file) {
  struct stat status {};
  return lstat(file.lock_path, &status) == 0;
}

int clear_lock(const GuardedFile& file) {
  // Unlock removes the locks of its mask without a result, so it is looked at again.
  Unlock(file.bit);
  if (file.bit == 0) (void)unlink(file.lock_path);
  if (!is_taken(file)) return kDone;
  return refuse("can not clear lock " + in_quotes(file.name) + ": " + file.lock_path + " stays",
                kFailed);
}

bool is_chosen(const GuardedFile& file, const std::vector<std::string>& names) {
  return names.empty() || std::find(names.begin(), names.end(), file.name) != names.end();
}

}  // namespace fileshare
