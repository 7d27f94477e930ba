/* The shares of USB disks, from the mounts that the system has. */
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "filesharing/shares.h"
#include "tests/device_test.h"

namespace {

constexpr char kRegistry[] = "/etc/win_share.info";
constexpr char kSmb[] = "/etc/samba/user_smb.conf";
constexpr char kAfp[] = "/etc/netatalk/AppleVolumes.conf";

class RemovableSharesTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    write(kRegistry, "");
    write(kSmb, "");
    write(kAfp, "");
  }

  void TearDown() override {
    while (!mounted_.empty()) {
      EXPECT_EQ(umount(mounted_.back().c_str()), 0) << mounted_.back();
      mounted_.pop_back();
    }
    DeviceTest::TearDown();
  }

  /* The source stands before the mount point in /proc/mounts. */
  void mount_at(const std::string& folder, unsigned long flags = 0,
                const std::string& source = "disk") {
    ASSERT_EQ(system(("/bin/busybox mkdir -p " + folder).c_str()), 0);
    ASSERT_EQ(mount(source.c_str(), folder.c_str(), "tmpfs", flags, ""), 0) << folder;
    mounted_.push_back(folder);
  }

 private:
  Strings mounted_;
};

TEST_F(RemovableSharesTest, EachMountedPartitionOfTheDiskIsAShare) {
  mount_at("/harddisk/volume_3/data/FLASH_1_1");
  mount_at("/harddisk/volume_3/data/FLASH_2_1");
  mount_at("/harddisk/volume_3/data/HDD_1_1");
  mount_at("/harddisk/volume_2/data/FLASH_1_1");
  mount_at("/harddisk/volume_4/data/FLASH_1_7", MS_RDONLY);
  write(kRegistry, "HDD_1_1=kept");
  write(kSmb, "[HDD_1_1]\r\nkept\n");
  write(kAfp, "# kept");
  EXPECT_EQ(AddWinShares("FLASH", 0), 0);
  EXPECT_EQ(read(kRegistry),
            "HDD_1_1=kept\n"
            "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:7,everyone:7\n"
            "FLASH_1_7=0:4:For everyone:/FLASH_1_7/:administrators:5,everyone:5\n");
  EXPECT_EQ(read(kSmb),
            "[HDD_1_1]\r\nkept\n"
            "[FLASH_1_1]\n"
            "valid users=@\"administrators\",@\"everyone\"\n"
            "comment = For everyone\n"
            "path=/harddisk/volume_3/data/FLASH_1_1\n"
            "read only = yes\n"
            "write list= @\"administrators\",@\"everyone\"\n"
            "[FLASH_1_7]\n"
            "valid users=@\"administrators\",@\"everyone\"\n"
            "comment = For everyone\n"
            "path=/harddisk/volume_4/data/FLASH_1_7\n"
            "read only = yes\n"
            "write list= \n");
  EXPECT_EQ(read(kAfp),
            "# kept\n"
            "\"/harddisk/volume_3/data/FLASH_1_1/\" \"[FLASH_1_1]\" "
            "rwlist:@\"administrators\",@\"everyone\" allow:@\"administrators\",@\"everyone\"\n"
            "\"/harddisk/volume_4/data/FLASH_1_7/\" \"[FLASH_1_7]\" "
            "allow:@\"administrators\",@\"everyone\"\n");
  EXPECT_EQ(commands(), Strings());
}

/* A mount point is found by its beginning, and named for its end. */
TEST_F(RemovableSharesTest, MountBelowAPartitionIsAShareToo) {
  mount_at("/harddisk/volume_4/data/HDD_2");
  mount_at("/harddisk/volume_4/data/HDD_2_1/sub");
  mount_at("/harddisk/volume_4/data/HDD_21");
  EXPECT_EQ(AddWinShares("HDD", 1), 0);
  EXPECT_EQ(read(kRegistry),
            "HDD_2=0:4:For everyone:/HDD_2/:administrators:7,everyone:7\n"
            "sub=0:4:For everyone:/sub/:administrators:7,everyone:7\n"
            "HDD_21=0:4:For everyone:/HDD_21/:administrators:7,everyone:7\n");
}

/* " /harddisk/volume_3/data/FLASH_1_1 tmpfs rw," has 44 characters. */
TEST_F(RemovableSharesTest, MountsAreReadInPiecesOf128Characters) {
  struct Case {
    std::size_t source_length;
    const char* registered;
  };
  const Case cases[] = {
      {84, "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:7,everyone:7\n"},
      {85, "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:5,everyone:5\n"},
      {93, "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:5,everyone:5\n"},
      {94, ""}, /* the blank behind the mount point is in the next piece */
      {127, "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:7,everyone:7\n"},
  };
  const std::string folder = "/harddisk/volume_3/data/FLASH_1_1";
  for (const Case& c : cases) {
    ASSERT_EQ(mkdir("/harddisk/volume_3/data", 0755) == 0 || errno == EEXIST, true);
    ASSERT_EQ(mkdir(folder.c_str(), 0755) == 0 || errno == EEXIST, true);
    ASSERT_EQ(mount(std::string(c.source_length, 'x').c_str(), folder.c_str(), "tmpfs", 0, nullptr),
              0);
    write(kRegistry, "");
    EXPECT_EQ(AddWinShares("FLASH", 0), 0);
    EXPECT_EQ(read(kRegistry), c.registered) << c.source_length;
    ASSERT_EQ(umount(folder.c_str()), 0);
  }
}

TEST_F(RemovableSharesTest, FilesAreMadeOrNothingIsAdded) {
  mount_at("/harddisk/volume_3/data/FLASH_1_1");
  ASSERT_EQ(unlink(kRegistry), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(AddWinShares("HDD", 0), 0); /* no such disk: the files are opened all the same */
  EXPECT_EQ(changes(before), Strings({"+/etc/win_share.info"}));
  EXPECT_EQ(read(kRegistry), "");

  ASSERT_EQ(unlink(kAfp), 0);
  ASSERT_EQ(mkdir(kAfp, 0755), 0);
  EXPECT_EQ(AddWinShares("FLASH", 0), -1);
  EXPECT_EQ(read(kRegistry) + read(kSmb), "");
  ASSERT_EQ(rmdir(kAfp), 0);
  EXPECT_EQ(AddWinShares(nullptr, 0), -1);
  EXPECT_EQ(AddWinShares("FLASH", 0x7fffffff), 0);
  EXPECT_EQ(read(kRegistry), "");
}

TEST_F(RemovableSharesTest, PartitionsAreDeletedByNumber) {
  write(kRegistry, "FLASH_2_1=a\nFLASH_2_10=b\n\nFLASH_2_2=c\nFLASH_2_3=d\n");
  write(kSmb, "[FLASH_2_1]\nx\n[FLASH_2_10]\n[FLASH_2_2]\n[FLASH_2_3]\n");
  write(kAfp,
        "\"/harddisk/volume_4/data/FLASH_2_1/\" a\n\"/harddisk/volume_4/data/FLASH_2_10/\" b\n"
        "\"/harddisk/volume_3/data/FLASH_2_2/\" c\n");
  EXPECT_EQ(DelWinShares("FLASH", 1, 2), 0);
  EXPECT_EQ(read(kRegistry), "FLASH_2_10=b\nFLASH_2_3=d\n");
  EXPECT_EQ(read(kSmb), "[FLASH_2_10]\n[FLASH_2_3]\n");
  EXPECT_EQ(read(kAfp),
            "\"/harddisk/volume_4/data/FLASH_2_10/\" b\n"
            "\"/harddisk/volume_3/data/FLASH_2_2/\" c\n");
  const Strings called = commands();
  EXPECT_EQ(std::count(called.begin(), called.end(), "sleep 2"), 2);
}

TEST_F(RemovableSharesTest, FailedDeletionDoesNotStopTheNext) {
  write(kRegistry, "HDD_1_1=a\nHDD_1_2=b\n");
  ASSERT_EQ(unlink(kSmb), 0);
  write(kAfp, "\"/harddisk/volume_3/data/HDD_1_1/\"\n\"/harddisk/volume_3/data/HDD_1_2/\"\n");
  fail_command("cp", 2);
  EXPECT_EQ(DelWinShares("HDD", 0, 2), 0);
  EXPECT_EQ(read(kRegistry) + read(kAfp), "");

  const Snapshot before = snapshot();
  EXPECT_EQ(DelWinShares("HDD", 0, 0), 0);
  EXPECT_EQ(DelWinShares("HDD", 0, -1), 0);
  EXPECT_EQ(DelWinShares(nullptr, 0, 1), -1);
  EXPECT_EQ(changes(before), Strings());
}

}  // namespace
