// Lock files, and the backup, restore and mirror of the account files.
#include <sys/stat.h>
#include <unistd.h>

#include "filesharing/conf.h"
#include "tests/device_test.h"

namespace {

class LocksTest : public DeviceTest {};

TEST_F(LocksTest, TakenInOneOrderAndKeptWhenOneIsBusy) {
  const Snapshot before = snapshot();
  EXPECT_EQ(Lock(0), 0u);
  EXPECT_EQ(changes(before), Strings());
  umask(0022);
  EXPECT_EQ(Lock(127), 0u);
  EXPECT_EQ(changes(before),
            Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/share.lck", "+/tmp/smb.lck",
                     "+/tmp/smbpass.lck", "+/tmp/user.lck", "+/tmp/webpass.lck"}));
  EXPECT_EQ(mode("/tmp/pass.lck"), 0644u);
  // With the locks before it free, the first busy one in the order 1, 2, 8, 4, 16, 32, 64 is told.
  int busy = 127;
  for (const int bit : {1, 2, 8, 4, 16, 32, 64}) {
    EXPECT_EQ(Lock(busy), static_cast<unsigned>(bit));
    Unlock(127 & ~(busy &= ~bit));
    ASSERT_EQ(Lock(127 & ~busy), 0u);
  }
  Unlock(127);
  Unlock(127);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(LocksTest, BusyLockLeavesTheOnesBeforeIt) {
  write("/tmp/user.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(Lock(107), 8u);
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "+/tmp/pass.lck"}));
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

  const std::string accounts = read("/etc/passwd");
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
  EXPECT_EQ(RestoreConFiles(1), 0);
  EXPECT_EQ(read("/etc/passwd"), accounts);
}

TEST_F(LocksTest, BackupTellsTheStatusOfTheLastCommand) {
  unlink("/harddisk/volume_1/conf/group");
  EXPECT_EQ(BackupConFiles(0), 0);
  EXPECT_NE(BackupConFiles(2), 0);
  EXPECT_EQ(BackupConFiles(2 | 8), 0) << "the last copy worked";
  EXPECT_FALSE(exists("/harddisk/volume_1/conf/group.ttt"));
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
  const Snapshot before = snapshot();
  UpdateDiskUserGroupInfo();
  Strings expected;
  for (const std::string name : {"passwd", "smbpasswd", "group", "usrgrp.info"}) {
    expected.push_back("/bin/cp [-f] [/harddisk/volume_1/conf/" + name +
                       "] [/harddisk/volume_2/conf/" + name + "]");
  }
  EXPECT_EQ(commands(), expected);
  EXPECT_EQ(
      changes(before),
      Strings({"+/harddisk/volume_2/conf/group", "+/harddisk/volume_2/conf/passwd",
               "+/harddisk/volume_2/conf/smbpasswd", "+/harddisk/volume_2/conf/usrgrp.info"}));
}

}  // namespace
