// Lock files, and the backup, restore and mirror of the account files.
#include <sys/stat.h>
#include <unistd.h>

#include "filesharing/conf.h"
#include "tests/device_test.h"

namespace {

class LocksTest : public DeviceTest {};

TEST_F(LocksTest, TakenWithTheCallersMaskAndGivenBackTwice) {
  const Snapshot before = snapshot();
  EXPECT_EQ(Lock(0), 0u);
  EXPECT_EQ(changes(before), Strings());
  umask(0022);
  EXPECT_EQ(Lock(127), 0u);
  EXPECT_EQ(mode("/tmp/pass.lck"), 0644u);
  Unlock(127);
  Unlock(127);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(LocksTest, BackupAndRestoreRunEachCopyTwiceInOrder) {
  EXPECT_EQ(BackupConFiles(127), 0);
  Strings expected;
  for (const char* name :
       {"passwd", "group", "usrgrp.info", "share.info", "smb.conf", "smbpasswd", ".htpasswd"}) {
    const std::string path = std::string("/harddisk/volume_1/conf/") + name;
    const std::string command = "/bin/cp [-f] [" + path + "] [" + path + ".ttt]";
    expected.insert(expected.end(), {command, command});
    EXPECT_EQ(read(path + ".ttt"), read(path));
  }
  EXPECT_EQ(commands(), expected);

  const std::string members = read("/etc/usrgrp.info");
  write("/etc/passwd", "");
  write("/etc/usrgrp.info", "");
  clear_commands();
  EXPECT_EQ(RestoreConFiles(FSH_FILE_USER), 0);
  const char command[] =
      "/bin/cp [-f] [/harddisk/volume_1/conf/usrgrp.info.ttt] "
      "[/harddisk/volume_1/conf/usrgrp.info]";
  EXPECT_EQ(commands(), Strings({command, command}));
  EXPECT_EQ(read("/etc/usrgrp.info"), members);
  EXPECT_EQ(read("/etc/passwd"), "");
}

TEST_F(LocksTest, OnlyAConfigurationVolumeIsBackedUp) {
  mount_volume(2);
  write("/harddisk/volume_2/conf/.qv27", "");
  write("/harddisk/volume_2/conf/share.info", "2");
  unlink("/harddisk/volume_1/conf/.qv27");
  EXPECT_EQ(BackupConFiles(4), 0);
  EXPECT_EQ(read("/harddisk/volume_2/conf/share.info.ttt"), "2");

  unmount_volume(2);
  mount_volume(3);
  write("/harddisk/volume_3/conf/.qv27", "");
  clear_commands();
  EXPECT_EQ(BackupConFiles(107), -1);
  EXPECT_EQ(RestoreConFiles(107), -1);
  EXPECT_EQ(commands(), Strings());
}

TEST_F(LocksTest, MirrorNeedsBothDisks) {
  UpdateDiskUserGroupInfo();
  EXPECT_EQ(commands(), Strings());
  mount_volume(2);
  unlink("/harddisk/volume_1/conf/.qv27");  // it asks for the disks alone
  UpdateDiskUserGroupInfo();
  Strings expected;
  for (const std::string name : {"passwd", "smbpasswd", "group", "usrgrp.info"}) {
    expected.push_back("/bin/cp [-f] [/harddisk/volume_1/conf/" + name +
                       "] [/harddisk/volume_2/conf/" + name + "]");
  }
  EXPECT_EQ(commands(), expected);
}

}  // namespace
