// fileshare share removable-add and removable-remove.
#include <sys/mount.h>

#include <cstdlib>

#include "tests/device_test.h"

namespace {

class FileshareRemovableTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    ASSERT_EQ(system("/bin/busybox mkdir -p /harddisk/volume_4/data/FLASH_2_1"), 0);
    ASSERT_EQ(mount("stick", "/harddisk/volume_4/data/FLASH_2_1", "tmpfs", 0, nullptr), 0);
  }

  void TearDown() override {
    EXPECT_EQ(umount("/harddisk/volume_4/data/FLASH_2_1"), 0);
    DeviceTest::TearDown();
  }
};

TEST_F(FileshareRemovableTest, SharesADiskByTheNumberInItsNameAndRemovesIt) {
  const Snapshot before = snapshot();
  const Outcome added = run({"fileshare", "share", "removable-add", "FLASH", "2"});
  EXPECT_EQ(added.status, 0) << added.error;
  EXPECT_EQ(read("/etc/win_share.info"),
            "FLASH_2_1=0:4:For everyone:/FLASH_2_1/:administrators:7,everyone:7\n");
  EXPECT_EQ(run({"fileshare", "share", "removable-remove", "FLASH", "2", "1"}).status, 0);
  EXPECT_EQ(changes(before), Strings()); /* no lock is left either */
}

TEST_F(FileshareRemovableTest, RefusesOtherDisksAndSaysWhatFailed) {
  const Snapshot before = snapshot();
  for (const Strings& arguments :
       {Strings{"USB", "1"}, Strings{"FLASH", "3"}, Strings{"FLASH", "0"}, Strings{"HDD a", "1"},
        Strings{"HDD/../x", "1"}, Strings{"FLASH567890123X", "1"}, Strings{"FLASH"}}) {
    Strings line = {"fileshare", "share", "removable-add"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(run(line).status, 2) << arguments.front();
  }
  EXPECT_EQ(changes(before), Strings());

  ASSERT_EQ(system("/bin/busybox rm /etc/win_share.info;"
                   "/bin/busybox mkdir /etc/win_share.info"),
            0);
  const Outcome failed = run({"fileshare", "share", "removable-add", "FLASH", "2"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.error,
            "fileshare: can not share disk \"FLASH_2\": a file can not be opened or written (code "
            "-1)\n");
  EXPECT_FALSE(exists("/tmp/share.lck") || exists("/tmp/smb.lck"));

  write("/tmp/smb.lck", "");
  EXPECT_EQ(run({"fileshare", "share", "removable-remove", "FLASH", "2", "1"}).status, 1);
}

}  // namespace
