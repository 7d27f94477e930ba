/* The adapters that stand where the library calls the device's older tools. */
#include <unistd.h>

#include <filesystem>

#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

class AdaptersTest : public DeviceTest {
 protected:
  static int adapter(const std::string& name, Strings arguments) {
    arguments.insert(arguments.begin(), "/usr/local/bin/adapters/" + name);
    return run(arguments).status;
  }
};

constexpr char kLimits[] = "/tmp/edquota.tmp";

TEST_F(AdaptersTest, PasswordsGoToSambaByItsStandardInputAlone) {
  const std::string odd = "p\"a$HOME`id`\\n '% ";
  EXPECT_EQ(adapter("smbpasswd", {"-a", "alice", odd}), 0);
  EXPECT_EQ(adapter("smbpasswd", {"-bob", "-n"}), 0);
  EXPECT_EQ(adapter("smbpasswd", {"-a", "-n", "carol d"}), 0);
  EXPECT_EQ(commands(),
            Strings({"/usr/bin/smbpasswd [-s] [-a] [--] [alice] <" + odd + "\\x0A" + odd + "\\x0A>",
                     "/usr/bin/smbpasswd [-s] [--] [-bob] <-n\\x0A-n\\x0A>",
                     "/usr/bin/smbpasswd [-a] [-n] [--] [carol d]"}));
}

TEST_F(AdaptersTest, APasswordThatSambaRefusesOrWouldCutIsRefused) {
  fail_command("smbpasswd", 0, 5);
  EXPECT_EQ(adapter("smbpasswd", {"alice", "secret"}), 5);
  EXPECT_EQ(adapter("smbpasswd", {"-n", "alice"}), 5);
  clear_commands();
  EXPECT_EQ(adapter("smbpasswd", {"alice", "one\ntwo"}), 2);
  EXPECT_EQ(adapter("smbpasswd", {"-a", "alice"}), 2);
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AdaptersTest, LimitsGoToEveryDeviceAlsoWhenOneRefuses) {
  write(kLimits, "/dev/sda1 0 5120 5120 0 0 0\n/dev/md0 0 4398046510080 4398046510080 0 0 0\n");
  fail_command("setquota", 1);
  EXPECT_EQ(adapter("edquota", {"-u", "a \"b"}), 1);
  const std::string start = "/usr/sbin/setquota [--always-resolve] [-u] [--] [a \"b] ";
  EXPECT_EQ(commands(), Strings({start + "[5120] [5120] [0] [0] [/dev/sda1]",
                                 start + "[4398046510080] [4398046510080] [0] [0] [/dev/md0]"}));
  EXPECT_EQ(adapter("edquota", {"-u", "2000"}), 0);
}

TEST_F(AdaptersTest, LimitsThatSomebodyElsePutThereAreRefused) {
  EXPECT_EQ(adapter("edquota", {"-u", "alice"}), 1) << "no limits";
  write("/tmp/other", "/dev/sda1 0 1 1 0 0 0\n");
  fs::create_symlink("/tmp/other", kLimits);
  EXPECT_EQ(adapter("edquota", {"-u", "alice"}), 1) << "a link";
  fs::rename("/tmp/other", kLimits);
  ASSERT_EQ(chown(kLimits, 2000, 501), 0);
  EXPECT_EQ(adapter("edquota", {"-u", "alice"}), 1) << "another user's";
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AdaptersTest, EndsTheConnectionsOfTheUserAlone) {
  constexpr char kTool[] = "/usr/bin/smbstatus";
  const fs::path stand_in = fs::read_symlink(kTool);
  fs::remove(kTool);
  write(kTool,
        "#!/bin/sh\n[ \"$*\" = '-n -p' ] && echo '\nSamba version 4\nPID     Username     Group\n"
        "-------\n25      2000         501   10.0.0.7\n26      20000        501   10.0.0.8\n"
        "27      2000         501   2000'\n");
  fs::permissions(kTool, fs::perms::owner_all);
  EXPECT_EQ(adapter("smbstatus", {"2000"}), 0);
  EXPECT_EQ(adapter("smbstatus", {"2001"}), 0);
  fs::remove(kTool);
  fs::create_symlink(stand_in, kTool);
  EXPECT_EQ(commands(), Strings({"/usr/bin/smbcontrol [25] [shutdown]",
                                 "/usr/bin/smbcontrol [27] [shutdown]"}));
}

}  // namespace
