// Adding users and setting quotas. The group file counts on from call to call, so that each call
// stands in a process of its own.
#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/account_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd"};
constexpr char kQuotaFile[] = "/tmp/edquota.tmp";

class AddUserTest : public AccountTest {
 protected:
  static unsigned add(const UserInfo& record) {
    return in_process([&] {
      (void)signal(SIGCHLD, SIG_IGN);  // the tools' statuses are told all the same
      return AddUser(&record);
    });
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
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"sync", "/usr/bin/edquota [-u] [dave]",
                                 "/usr/sbin/smbpasswd [-a] [dave] [word-77]",
                                 copy_back_to("/etc/group"), "sync", "sleep 1"},
                                replaced("/etc/usrgrp.info", 2)}));
}

/* The list of everyone is copied after the only sleep. */
TEST_F(AddUserTest, UncollectedCopyOfTheListCountsAsDone) {
  at_sleep(1, [] { (void)signal(SIGCHLD, SIG_IGN); });
  EXPECT_EQ(add(user("dave")), 0u);
  EXPECT_NE(read("/etc/usrgrp.info").find(",dave:250\n"), std::string::npos);
}

TEST_F(AddUserTest, LowestFreeIdIsTakenOnALineOfItsOwn) {
  mount_volume(2);
  const std::string cases[][2] = {
      {"a:x:2000:501:::\nb:x:2001:501:::\n", "dave:JqQ7vIFy3N7KM:2002"},
      {"a:x:2000:501:::\nb:x:2002:501:::", "\ndave:JqQ7vIFy3N7KM:2001"},
      {"a:x:1999:501:::\nb:x:20000:501:::\n", "dave:JqQ7vIFy3N7KM:2000"},
      {"b:x:2001:501:::\na:x:2000:501:::\n+c:x:2002:501:::\nd:x:2003\n", "dave:JqQ7vIFy3N7KM:2002"},
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

TEST_F(AddUserTest, TakenNamesAndMalformedFilesAreRefused) {
  const auto add_dave = [] { return add(user("dave")); };
  expect_refused("/etc/group", "everyone:x:501:" + std::string(41, 'm') + "\n", 24, add_dave);
  expect_refused("/etc/usrgrp.info", "everyone=bob:1,\n", 24, add_dave);
  EXPECT_EQ(add(user("Bob")), 26u);
  EXPECT_EQ(add(user("ROOT")), 26u);
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
  for (const int volume : {1, 2, 3, 4, 5}) unmount_volume(volume);
  EXPECT_EQ(SetUserQuota("bob", 5), 0u);
  EXPECT_FALSE(exists(kQuotaFile));
}

}  // namespace
