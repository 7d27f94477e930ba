// Adding users and setting quotas. The group file counts on from call to call, so that each call
// stands in a process of its own.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/account_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd"};
constexpr char kQuotaFile[] = "/tmp/edquota.tmp";
constexpr char kQuotaTool[] = "/usr/bin/edquota [-u] [dave]";
constexpr char kSmbTool[] = "/usr/sbin/smbpasswd [-a] [dave] [word-77]";

class AddUserTest : public AccountTest {
 protected:
  static unsigned add(const UserInfo& record) {
    return in_process([&] { return AddUser(&record); });
  }
};

TEST_F(AddUserTest, UserStandsInEveryFileStepByStep) {
  const std::string accounts = read("/etc/passwd");
  write("/etc/usrgrp.info",
        "everyone=   \r\neveryone=  bob:1,carol:2:3\r\n\n\r\nno key\nstaff= bob\n"
        "everyones=a\nEveryone=b\n everyone=c\neveryone=");
  const Snapshot before = snapshot();
  // The id is chosen, whatever the caller left in the record.
  EXPECT_EQ(add(user("dave", "word-77", 250, 4000)), 0u);
  EXPECT_EQ(read("/etc/passwd"), accounts + "dave:Jq5EBTBqUeV2g:2003:501:Dave Miller::/dev/null\n");
  EXPECT_EQ(read("/etc/group"),
            "root:x:0:\ndaemon:x:1:\nbin:x:2:\nnobody:x:99:\nsshd:x:100:\n"
            "administrators:x:500:admin\neveryone:x:501:admin,guest,alice,bob,carol,dave\n"
            "staff:x:2000:alice,bob\nfamily:x:2001:alice,carol\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=dave:250\neveryone=bob:1,carol:2:3,dave:250\n\n\r\nno key\nstaff= bob\n"
            "everyones=a\nEveryone=b\n everyone=c\neveryone=dave:250\n");
  EXPECT_EQ(read(kQuotaFile), "/dev/sda1 0 256000 256000 0 0 0\n");
  EXPECT_EQ(changes(before).size(), 8u);  // three files, their backups and smbpasswd's, the quota
  EXPECT_EQ(commands(),
            joined({backup_of(kFiles),
                    {"sync", kQuotaTool, kSmbTool, copy_back_to("/etc/group"), "sync", "sleep 1"},
                    replaced("/etc/usrgrp.info", 2)}));
}

TEST_F(AddUserTest, LowestFreeIdIsTakenOnALineOfItsOwn) {
  mount_volume(2);
  const std::string cases[][2] = {
      {"a:x:2000:501:::\nb:x:2001:501:::\n", "dave:JqQ7vIFy3N7KM:2002"},
      {"a:x:2000:501:::\nb:x:2002:501:::", "\ndave:JqQ7vIFy3N7KM:2001"},
      {"a:x:1999:501:::\nb:x:20000:501:::\n", "dave:JqQ7vIFy3N7KM:2000"},
  };
  for (const auto& [accounts, start] : cases) {
    write("/etc/passwd", accounts);
    EXPECT_EQ(add(user("dave", "")), 0u);
    EXPECT_EQ(read("/etc/passwd"), accounts + start + ":501:Dave Miller::/dev/null\n");
    EXPECT_EQ(read("/harddisk/volume_2/conf/passwd"), read("/etc/passwd"));
  }
}

TEST_F(AddUserTest, FullFieldsAreReadToTheirEnd) {
  UserInfo record;
  std::memset(&record, 'w', sizeof record);
  EXPECT_EQ(add(record), 0u);
  const std::string longest = "\n" + std::string(20, 'w') +
                              ":JqlSBSZyrQISU:2003:501:" + std::string(48, 'w') +
                              ":Jq5TGiIV1HNqI:/dev/null\n";
  EXPECT_NE(read("/etc/passwd").find(longest), std::string::npos);
}

TEST_F(AddUserTest, PasswordIsEscapedForTheShellButTheNameBesideItIsNot) {
  EXPECT_EQ(add(user("a$HOME`echo b`", "$HOME\"`id`\\")), 0u);
  EXPECT_EQ(commands().at(9), "/usr/bin/edquota [-u] [a$HOME`echo b`]");
  EXPECT_EQ(commands().at(10), R"(/usr/sbin/smbpasswd [-a] [a/rootb] [$HOME"`id`\])");

  SetUp();
  EXPECT_EQ(add(user("a$HOME`echo b`", "")), 0u);
  EXPECT_EQ(commands().at(10), "/usr/sbin/smbpasswd [-a] [-n] [a$HOME`echo b`]");
}

TEST_F(AddUserTest, RefusedBeforeAnythingIsTouched) {
  write("/tmp/smbpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("Bob")), 26u);
  EXPECT_EQ(add(user("ROOT")), 26u);
  EXPECT_EQ(add(user("")), 20u);
  EXPECT_EQ(AddUser(nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(add(user("dave")), 34u);  // busy: the locks before it stay
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AddUserTest, FailedStepBringsEveryFileBack) {
  const Strings quota{"+/tmp/edquota.tmp"};
  const std::vector<Fault> faults{
      {[] {
         std::filesystem::remove("/etc/passwd");
         std::filesystem::create_symlink("/nowhere/passwd", "/etc/passwd");
       },
       21, backed_up("smbpasswd").back()},
      {[] { fail_command("edquota", 1); }, 32, kQuotaTool, quota},
      {[] { fail_command("smbpasswd", 1); }, 256, kSmbTool, quota},
      {[] { std::filesystem::remove_all("/harddisk/volume_1/conf/tmp"); }, 22, kSmbTool, quota},
      {[] { (void)unlink("/etc/group"); }, 21, kSmbTool, quota},
      {[] { write("/etc/group", "everyone:x:501:" + std::string(41, 'm') + "\n"); }, 24, kSmbTool,
       quota},
      {[] { (void)unlink("/etc/usrgrp.info"); }, 21, "sleep 1", quota},
      {[] { write("/etc/usrgrp.info", "everyone=bob:1,\n"); }, 24, "sleep 1", quota},
      // The backup takes eight copies, the group file one and the lists two.
      {[] { fail_command("cp", 9); }, 34, copy_back_to("/etc/group"), quota},
      {[] { fail_command("cp", 11); }, 34, copy_back_to("/etc/usrgrp.info"), quota},
  };
  expect_restored(kFiles, faults, [] { return add(user("dave")); });
}

TEST_F(AddUserTest, SmbAccountFileIgnoredChildSignalAndFirstOfTwoCopiesDoNotMatter) {
  ASSERT_EQ(unlink("/etc/samba/smbpasswd"), 0);
  ASSERT_EQ(mkdir("/etc/samba/smbpasswd", 0700), 0);  // it can not be opened
  (void)signal(SIGCHLD, SIG_IGN);
  fail_command("cp", 10);
  const UserInfo dave = user("dave");
  EXPECT_EQ(AddUser(&dave), 0u);
}

TEST_F(AddUserTest, QuotaIsSetOnEveryDisk) {
  const std::string disks = "/dev/sda1 0 5120 5120 0 0 0\n/dev/sdb1 0 5120 5120 0 0 0\n";
  for (const int volume : {2, 3, 4}) mount_volume(volume);
  std::filesystem::create_directory("/dev/LVM");
  write("/dev/LVM/lv0", "");
  EXPECT_EQ(SetUserQuota("a\"b", 5), 0u);
  EXPECT_EQ(read(kQuotaFile), disks);
  EXPECT_EQ(commands(), Strings({"/usr/bin/edquota [-u] [a\"b]"}));
  mount_volume(5);
  EXPECT_EQ(SetUserQuota("bob", 5), 0u);
  EXPECT_EQ(read(kQuotaFile), disks + "/dev/LVM/lv0 0 5120 5120 0 0 0\n");
  std::filesystem::remove_all("/dev/LVM");
  EXPECT_EQ(SetUserQuota("bob", 5), 0u);
  EXPECT_EQ(read(kQuotaFile), disks + "/dev/md0 0 5120 5120 0 0 0\n");
  fail_command("edquota", 1);
  EXPECT_EQ(SetUserQuota("bob", 0), 32u);
  EXPECT_EQ(SetUserQuota(nullptr, 0), 20u);
}

TEST_F(AddUserTest, QuotaWithoutDiskOrPrototypeIsNotSet) {
  write(kQuotaFile, "old");
  unmount_volume(1);
  EXPECT_EQ(SetUserQuota("bob", 5), 0u);
  EXPECT_FALSE(exists(kQuotaFile));
  mount_volume(1);
  std::filesystem::create_directory(kQuotaFile);
  EXPECT_EQ(SetUserQuota("bob", 0), 21u);
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
