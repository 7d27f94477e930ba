// fileshare share removable-add and removable-remove.
#include <sys/mount.h>

#include <cstdlib>

#include "tests/fileshare_run.h"

namespace {

class FileshareRemovableTest : public FileshareRun {};

TEST_F(FileshareRemovableTest, SharesADiskByTheNumberInItsNameAndRemovesIt) {
  ASSERT_EQ(system("/bin/busybox mkdir -p /harddisk/volume_4/data/FLASH_2_1"), 0);
  ASSERT_EQ(mount("stick", "/harddisk/volume_4/data/FLASH_2_1", "tmpfs", 0, nullptr), 0);
  const Snapshot before = snapshot();
  expect({"share", "removable-add", "FLASH", "2"});
  EXPECT_EQ(read("/etc/win_share.info"),
            "FLASH_2_1=0:4:For everyone:/FLASH_2_1/:administrators:7,everyone:7\n");
  expect({"share", "removable-remove", "FLASH", "2", "1"});
  EXPECT_EQ(changes(before), Strings()); /* no lock is left either */
  EXPECT_EQ(umount("/harddisk/volume_4/data/FLASH_2_1"), 0);
}

TEST_F(FileshareRemovableTest, RefusesOtherDisksAndTakenFiles) {
  for (const auto& [kind, number] : std::vector<std::pair<std::string, std::string>>{
           {"USB", "1"}, {"FLASH", "3"}, {"FLASH", "0"}, {"HDD/../x", "1"}}) {
    expect_refused({{{"share", "removable-add", kind, number}, 2, ""}});
  }
  write("/tmp/share.lck", "");
  expect_refused({{{"share", "removable-remove", "FLASH", "2", "1"}, 1, "can not "}});
}

}  // namespace
