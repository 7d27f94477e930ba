// Backup, restore and mirror of the account files in the conf folders of the volumes.
#include "conf/result.h"
#include "conf/shell.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/conf.h"

namespace filesharing {
namespace {

struct AccountFile {
  unsigned bit;
  const char* name;
};

constexpr AccountFile kAccountFiles[] = {
    {FSH_FILE_PASSWORD, "passwd"},   {FSH_FILE_GROUP, "group"},  {FSH_FILE_USER, "usrgrp.info"},
    {FSH_FILE_SHARE, "share.info"},  {FSH_FILE_SMB, "smb.conf"}, {FSH_FILE_SMBPASS, "smbpasswd"},
    {FSH_FILE_WEBPASS, ".htpasswd"},
};

constexpr const char* kMirrored[] = {"passwd", "smbpasswd", "group", "usrgrp.info"};

// Copies the files of mask within the conf folder of the configuration volume, each from its name
// with one suffix to its name with the other.
int copy_account_files(int mask, const char* from_suffix, const char* to_suffix) {
  const int volume = configuration_volume();
  if (volume == 0) {
    return -1;
  }
  const std::string folder = format("/harddisk/volume_%d/conf", volume);
  int status = 0;
  for (const AccountFile& file : kAccountFiles) {
    if ((static_cast<unsigned>(mask) & file.bit) == 0) {
      continue;
    }
    for (int run = 0; run < 2; ++run) {
      status = run_command("/bin/cp -f %s/%s%s %s/%s%s 2>/dev/null", folder.c_str(), file.name,
                           from_suffix, folder.c_str(), file.name, to_suffix);
    }
  }
  return status;
}

}  // namespace
}  // namespace filesharing

int BackupConFiles(int mask) {
  using namespace filesharing;
  return guarded(-1, [&] { return copy_account_files(mask, "", ".ttt"); });
}

int RestoreConFiles(int mask) {
  using namespace filesharing;
  return guarded(-1, [&] { return copy_account_files(mask, ".ttt", ""); });
}

void UpdateDiskUserGroupInfo(void) {
  using namespace filesharing;
  const DiskPresence disks;
  if (disks.volume(1) != 1 || disks.volume(2) != 1) {
    return;
  }
  for (const char* name : kMirrored) {
    // The next change mirrors again: a copy that fails now is not told.
    static_cast<void>(guarded(-1, [&] {
      return run_command(
          "/bin/cp -f /harddisk/volume_1/conf/%s /harddisk/volume_2/conf/%s "
          "2>/dev/null",
          name, name);
    }));
  }
}
