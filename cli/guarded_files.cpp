#include "cli/guarded_files.h"

#include <algorithm>

#include "filesharing/conf.h"

namespace fileshare {

const std::vector<GuardedFile>& guarded_files() {
  static const std::vector<GuardedFile> files{
      {"pass", FSH_FILE_PASSWORD, "/tmp/pass.lck", "the system password file"},
      {"grp", FSH_FILE_GROUP, "/tmp/grp.lck", "the group file"},
      {"user", FSH_FILE_USER, "/tmp/user.lck", "the lists of users and groups"},
      {"share", FSH_FILE_SHARE, "/tmp/share.lck", "the list of shares"},
      {"smb", FSH_FILE_SMB, "/tmp/smb.lck", "Samba's shares"},
      {"smbpass", FSH_FILE_SMBPASS, "/tmp/smbpass.lck", "Samba's password file"},
      {"webpass", FSH_FILE_WEBPASS, "/tmp/webpass.lck", "the web password file"},
      {"samba", 0, "/tmp/samba.lck", "Samba's settings"},
      {"album", 0, "/tmp/album.lck", "the photo album's users"},
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

bool is_chosen(const GuardedFile& file, const std::vector<std::string>& names) {
  return names.empty() || std::find(names.begin(), names.end(), file.name) != names.end();
}

}  // namespace fileshare
