/* The shares of USB disks, from the mounts that the system has. What a failing step leaves stands
 * in docs/faults.md. */
#include <sys/mount.h>

#include <cstdlib>

#include "tests/account_commands.h"
#include "tests/share_records.h"

namespace {

constexpr char kRemovableSmb[] = "/etc/samba/user_smb.conf";

/* "FLASH_1_1=0:3:For everyone:/FLASH_1_1/:administrators:7,everyone:7\n". */
std::string line_of(const std::string& name, int volume = 4, int rights = 7) {
  return name + "=0:" + std::to_string(volume) + ":For everyone:/" + name +
         "/:administrators:" + std::to_string(rights) + ",everyone:" + std::to_string(rights) +
         "\n";
}

class RemovableSharesTest : public ShareTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    for (const char* file : {kRemovable, kRemovableSmb, kAfp}) write(file, "");
  }

  void TearDown() override {
    unmount_all();
    DeviceTest::TearDown();
  }

  /* Below the folder of the volumes. The source stands before the mount point in /proc/mounts. */
  void mount_at(const std::string& name, unsigned long flags = 0,
                const std::string& source = "disk") {
    mounted_.push_back("/harddisk/volume_" + name);
    const char* folder = mounted_.back().c_str();
    ASSERT_EQ(system(("/bin/busybox mkdir -p " + mounted_.back()).c_str()), 0);
    ASSERT_EQ(mount(source.c_str(), folder, "tmpfs", flags, ""), 0) << folder;
  }

  void unmount_all() {
    for (; !mounted_.empty(); mounted_.pop_back()) EXPECT_EQ(umount(mounted_.back().c_str()), 0);
  }

 private:
  Strings mounted_;
};

TEST_F(RemovableSharesTest, EachMountedPartitionOfTheDiskIsAShare) {
  mount_at("3/data/FLASH_1_1");
  mount_at("3/data/FLASH_2_1");
  mount_at("3/data/HDD_1_1");
  mount_at("2/data/FLASH_1_1");
  mount_at("4/data/FLASH_1_7", MS_RDONLY);
  write(kRemovable, "HDD_1_1=kept");
  write(kRemovableSmb, "[HDD_1_1]\r\nkept\n");
  write(kAfp, "# kept");
  EXPECT_EQ(AddWinShares("FLASH", 0), 0);
  EXPECT_EQ(read(kRemovable),
            "HDD_1_1=kept\n" + line_of("FLASH_1_1", 3) + line_of("FLASH_1_7", 4, 5));
  EXPECT_EQ(read(kRemovableSmb),
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
  mount_at("4/data/HDD_2");
  mount_at("4/data/HDD_2_1/sub");
  mount_at("4/data/HDD_21");
  EXPECT_EQ(AddWinShares("HDD", 1), 0);
  EXPECT_EQ(AddWinShares("HDD", 0x7fffffff), 0); /* no such disk, and no overflow */
  EXPECT_EQ(read(kRemovable), line_of("HDD_2") + line_of("sub") + line_of("HDD_21"));
}

/* " /harddisk/volume_3/data/FLASH_1_1 tmpfs rw," has 44 characters. */
TEST_F(RemovableSharesTest, MountsAreReadInPiecesOf128Characters) {
  const std::pair<size_t, std::string> cases[] = {
      {84, line_of("FLASH_1_1", 3)},
      {85, line_of("FLASH_1_1", 3, 5)},
      {93, line_of("FLASH_1_1", 3, 5)},
      {94, ""}, /* the blank behind the mount point is in the next piece */
      {127, line_of("FLASH_1_1", 3)},
  };
  for (const auto& [source_length, registered] : cases) {
    mount_at("3/data/FLASH_1_1", 0, std::string(source_length, 'x'));
    write(kRemovable, "");
    EXPECT_EQ(AddWinShares("FLASH", 0), 0);
    EXPECT_EQ(read(kRemovable), registered) << source_length;
    unmount_all();
  }
}

TEST_F(RemovableSharesTest, PartitionsAreDeletedByNumber) {
  const std::string folder = "\"/harddisk/volume_4/data/FLASH_2_";
  write(kRemovable, "FLASH_2_1=a\nFLASH_2_10=b\n\nFLASH_2_2=c\nFLASH_2_3=d\n");
  write(kRemovableSmb, "[FLASH_2_1]\nx\n[FLASH_2_10]\n[FLASH_2_2]\n[FLASH_2_3]\n");
  write(kAfp, folder + "1/\" a\n" + folder + "10/\" b\n\"/harddisk/volume_3/data/FLASH_2_2/\" c\n");
  EXPECT_EQ(DelWinShares("FLASH", 1, 2), 0);
  EXPECT_EQ(read(kRemovable), "FLASH_2_10=b\nFLASH_2_3=d\n");
  EXPECT_EQ(read(kRemovableSmb), "[FLASH_2_10]\n[FLASH_2_3]\n");
  EXPECT_EQ(read(kAfp), folder + "10/\" b\n\"/harddisk/volume_3/data/FLASH_2_2/\" c\n");
  const Strings of_one = joined({replaced(kRemovable, 2), replaced(kAfp, 2), {"sleep 2"}});
  EXPECT_EQ(commands(), joined({of_one, of_one}));
}

}  // namespace
