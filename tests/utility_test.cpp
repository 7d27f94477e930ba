/* Commands, mounted volumes and escaping. */
#include "platform/utility/utility.h"

#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <memory>

#include "tests/device_test.h"

namespace {

class UtilityTest : public DeviceTest {};

TEST_F(UtilityTest, RunsAFormattedCommandOfAnyLengthAndGivesItsRawStatus) {
  const std::string name(5000, 'n');
  EXPECT_EQ(SYSTEM("/bin/killall -%d %s", 9, name.c_str()), 0);
  fail_command("killall", 1, 3);
  EXPECT_EQ(SYSTEM("/bin/killall x 2>/dev/null"), 3 << 8);
  EXPECT_EQ(commands(), Strings({"/bin/killall [-9] [" + name + "]", "/bin/killall [x]"}));
}

TEST_F(UtilityTest, KeepsTheErrorThatTellsALostStatus) {
  (void)signal(SIGCHLD, SIG_IGN);
  errno = 0;
  EXPECT_EQ(SYSTEM("/bin/killall %s", "x"), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(UtilityTest, CountsMountPointsAndNotWhatResemblesThem) {
  unmount_volume(1);
  mount_volume(3);
  mount_volume(5);
  ASSERT_EQ(mkdir("/harddisk/volume_2/data", 0755), 0);
  ASSERT_EQ(mount("/harddisk/volume_1", "/harddisk/volume_2/data", "tmpfs", 0, ""), 0);
  int record[DSK_RECORD_SIZE];
  std::fill(std::begin(record), std::end(record), 7);
  EXPECT_EQ(DSK_DetectSysDisk(record), 0);
  EXPECT_EQ(std::vector<int>(record, record + 6), std::vector<int>({0, 0, 1, 0, 1, 7}));
  EXPECT_EQ(umount("/harddisk/volume_2/data"), 0);
}

TEST_F(UtilityTest, PrefersTheDisksThenTheRaidThenWhatCanBeUnplugged) {
  unmount_volume(1);
  EXPECT_EQ(FirstAvaibleVolume(), -1);
  for (const int volume : {4, 3, 5, 2, 1}) {
    mount_volume(volume);
    EXPECT_EQ(FirstAvaibleVolume(), volume);
  }
}

TEST_F(UtilityTest, EscapedTextReachesACommandAsItWas) {
  const std::string text = "a\"b$HOME`id`\\c' *;\xC3\xA4$(x)";
  const std::string all_special(1000, '"');
  for (const std::string& name : {text, all_special, std::string("\\"), std::string()}) {
    clear_commands();
    const auto escaped = std::make_unique<char[]>(2 * name.size() + 1);
    EXPECT_EQ(DBCS_SpecialChar(name.c_str(), escaped.get(), "\"$\\`"), 0);
    EXPECT_EQ(SYSTEM("/bin/killall \"%s\"", escaped.get()), 0);
    EXPECT_EQ(commands(), Strings({"/bin/killall [" + name + "]"}));
  }
}

TEST_F(UtilityTest, FindsBytesOfMultibyteCharactersAtAnyPlace) {
  EXPECT_EQ(DBCS_AnyDBCSInStr("plain \x7F text"), 0);
  EXPECT_EQ(DBCS_AnyDBCSInStr("caf\xC3\xA9"), 1);
  EXPECT_EQ(DBCS_AnyDBCSInStr("\x80"), 1);
}

}  // namespace
