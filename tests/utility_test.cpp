/* Commands, mounted volumes and escaping. */
#include "platform/utility/utility.h"

#include <sys/mount.h>

#include <cerrno>
#include <csignal>

#include "tests/device_test.h"

namespace {

class UtilityTest : public DeviceTest {};

TEST_F(UtilityTest, RunsACommandOfAnyLengthAndKeepsItsRawStatusAndError) {
  const std::string name(5000, 'n');
  EXPECT_EQ(SYSTEM("/bin/killall -%d %s", 9, name.c_str()), 0);
  EXPECT_EQ(commands(), Strings({"/bin/killall [-9] [" + name + "]"}));
  EXPECT_EQ(SYSTEM("exit 3"), 3 << 8);
  (void)signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(SYSTEM("true"), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(UtilityTest, CountsMountPointsAloneAndPrefersTheDisksThenTheRaid) {
  mount_volume(3);
  unmount_volume(1);
  EXPECT_EQ(run({"mkdir", "/harddisk/volume_2/data"}).status, 0);
  ASSERT_EQ(mount("/harddisk/volume_1", "/harddisk/volume_2/data", "tmpfs", 0, ""), 0);
  int record[DSK_RECORD_SIZE] = {7, 7, 7, 7, 7, 7};
  EXPECT_EQ(DSK_DetectSysDisk(record), 0);
  EXPECT_EQ(std::vector<int>(record, record + 6), std::vector<int>({0, 0, 1, 0, 0, 7}));
  EXPECT_EQ(umount("/harddisk/volume_2/data"), 0);
  unmount_volume(3);
  EXPECT_EQ(FirstAvaibleVolume(), -1);
  for (const int volume : {4, 3, 5, 2, 1}) {
    mount_volume(volume);
    EXPECT_EQ(FirstAvaibleVolume(), volume);
  }
}

TEST_F(UtilityTest, EscapedTextReachesACommandAsItWasAndMultibyteCharactersAreFound) {
  for (const std::string name : {"a\"b$HOME`id`\\c' *;\xC3\xA4$(x)", "\"\"\"\"\\", ""}) {
    clear_commands();
    std::string escaped(2 * name.size() + 1, '~');
    EXPECT_EQ(DBCS_SpecialChar(name.c_str(), escaped.data(), "\"$\\`"), 0);
    EXPECT_EQ(SYSTEM("/bin/killall \"%s\"", escaped.c_str()), 0);
    EXPECT_EQ(commands(), Strings({"/bin/killall [" + name + "]"}));
  }
  EXPECT_EQ(DBCS_AnyDBCSInStr("plain \x7F text"), 0);
  EXPECT_EQ(DBCS_AnyDBCSInStr("caf\xC3\xA9"), 1);
}

}  // namespace
