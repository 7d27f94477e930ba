// Adding users and setting quotas. The group file counts on from call to call, so that each call
// stands in a process of its own.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/device_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd"};
const Strings kBackups = backups_left({"group", "passwd", "smbpasswd", "usrgrp.info"});
constexpr char kQuotaFile[] = "/tmp/edquota.tmp";

class AddUserTest : public DeviceTest {
 protected:
  static UserInfo user(const char* name, const char* password = "word-77", unsigned quota = 250,
                       const char* description = "Dave Miller") {
    UserInfo record{};
    (void)std::snprintf(record.name, sizeof record.name, "%s", name);
    (void)std::snprintf(record.description, sizeof record.description, "%s", description);
    (void)std::snprintf(record.password, sizeof record.password, "%s", password);
    record.quota = quota;
    record.uid = 4000;  // of no account: the id is chosen
    return record;
  }

  static unsigned add(const UserInfo& record) {
    return in_process([&] { return AddUser(&record); });
  }
};

TEST_F(AddUserTest, UserStandsInEveryFile) {
  const std::string accounts = read("/etc/passwd");
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("dave")), 0u);
  EXPECT_EQ(read("/etc/passwd"), accounts + "dave:Jq5EBTBqUeV2g:2003:501:Dave Miller::/dev/null\n");
  EXPECT_EQ(read("/etc/group"),
            "root:x:0:\ndaemon:x:1:\nbin:x:2:\nnobody:x:99:\nsshd:x:100:\n"
            "administrators:x:500:admin\neveryone:x:501:admin,guest,alice,bob,carol,dave\n"
            "staff:x:2000:alice,bob\nfamily:x:2001:alice,carol\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0,alice:500,bob:1000,carol:0,dave:250\n"
            "administrators=admin:0\nstaff=alice:500,bob:1000\nfamily=alice:500,carol:0\n");
  EXPECT_EQ(read(kQuotaFile), "/dev/sda1 0 256000 256000 0 0 0\n");
  EXPECT_EQ(changes(before).size(), 8u);  // three files, their backups and smbpasswd's, the quota
  EXPECT_EQ(IsUserPassCorrect("dave", "word-77"), 1);
}

TEST_F(AddUserTest, LastLineWithoutItsEndStaysALineOfItsOwn) {
  write("/etc/passwd", "root:x:0:0::/:/bin/sh\nalice:x:2000:501:::/dev/null");
  EXPECT_EQ(add(user("dave")), 0u);
  EXPECT_EQ(read("/etc/passwd"),
            "root:x:0:0::/:/bin/sh\nalice:x:2000:501:::/dev/null\n"
            "dave:Jq5EBTBqUeV2g:2001:501:Dave Miller::/dev/null\n");
}

TEST_F(AddUserTest, StepsRunInOrder) {
  mount_volume(2);
  EXPECT_EQ(add(user("dave")), 0u);
  const std::string lists = copy_back_to("/etc/usrgrp.info");
  Strings mirror;
  for (const std::string name : {"passwd", "smbpasswd", "group", "usrgrp.info"}) {
    mirror.push_back("/bin/cp [-f] [/harddisk/volume_1/conf/" + name +
                     "] [/harddisk/volume_2/conf/" + name + "]");
  }
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"sync", "/usr/bin/edquota [-u] [dave]",
                                 "/usr/sbin/smbpasswd [-a] [dave] [word-77]",
                                 copy_back_to("/etc/group"), "sync", "sleep 1", lists, lists},
                                mirror}));
}

TEST_F(AddUserTest, LowestFreeIdIsTaken) {
  struct Case {
    const char* accounts;
    const char* id;
  };
  const Case cases[] = {
      {"root:x:0:0:::\n", "2000"},
      {"a:x:2000:501:::\nb:x:2001:501:::\n", "2002"},
      {"a:x:2000:501:::\nb:x:2002:501:::\n", "2001"},
      {"a:x:1999:501:::\nb:x:20000:501:::\n", "2000"},
  };
  for (const Case& c : cases) {
    SetUp();
    write("/etc/passwd", c.accounts);
    EXPECT_EQ(add(user("dave", "", 0, "")), 0u);
    EXPECT_EQ(read("/etc/passwd"),
              std::string(c.accounts) + "dave:JqQ7vIFy3N7KM:" + c.id + ":501:::/dev/null\n");
  }
}

TEST_F(AddUserTest, PasswordIsHashedInTwoHalvesAndFullFieldsAreReadToTheirEnd) {
  EXPECT_EQ(add(user("dave", "twelve-chars")), 0u);
  const std::string twelve = "dave:JqslE51ymq35.:2003:501:Dave Miller:JqvNhx3pYBt0k:/dev/null\n";
  EXPECT_NE(read("/etc/passwd").find(twelve), std::string::npos);

  SetUp();
  UserInfo record;
  std::memset(&record, 'w', sizeof record);
  record.quota = 4294967295u;
  EXPECT_EQ(add(record), 0u);
  const std::string name(20, 'w');
  const std::string longest =
      name + ":JqlSBSZyrQISU:2003:501:" + std::string(48, 'w') + ":Jq5TGiIV1HNqI:/dev/null\n";
  EXPECT_NE(read("/etc/passwd").find(longest), std::string::npos);
  EXPECT_NE(read("/etc/usrgrp.info").find(",carol:0," + name + ":4294967295\n"), std::string::npos);
  EXPECT_EQ(read(kQuotaFile), "/dev/sda1 0 4398046510080 4398046510080 0 0 0\n");
}

TEST_F(AddUserTest, OnlyTheLineOfEveryoneIsRewritten) {
  struct Case {
    const char* before;
    const char* after;
  };
  const Case cases[] = {
      {"everyone=\n", "everyone=dave:250\n"},
      {"everyone=   \r\n", "everyone=dave:250\n"},
      {"everyone=", "everyone=dave:250\n"},
      {"everyone=  bob:1,carol:2:3\r\n\n\r\nno key\nstaff= bob\n",
       "everyone=bob:1,carol:2:3,dave:250\n\n\r\nno key\nstaff= bob\n"},
      {"staff=\neveryones=a\nEveryone=b\n everyone=c\n",
       "staff=\neveryones=a\nEveryone=b\n everyone=c\n"},
      {"", ""},
  };
  for (const Case& c : cases) {
    SetUp();
    write("/etc/usrgrp.info", c.before);
    EXPECT_EQ(add(user("dave")), 0u);
    EXPECT_EQ(read("/etc/usrgrp.info"), c.after);
  }
}

TEST_F(AddUserTest, PasswordIsEscapedForTheShellButTheNameBesideItIsNot) {
  EXPECT_EQ(add(user("a$HOME`echo b`", "$HOME\"`id`\\")), 0u);
  const Strings all = commands();
  EXPECT_EQ(all.at(9), "/usr/bin/edquota [-u] [a$HOME`echo b`]");
  EXPECT_EQ(all.at(10), R"(/usr/sbin/smbpasswd [-a] [a/rootb] [$HOME"`id`\])");

  SetUp();
  EXPECT_EQ(add(user("a$HOME`echo b`", "")), 0u);
  EXPECT_EQ(commands().at(10), "/usr/sbin/smbpasswd [-a] [-n] [a$HOME`echo b`]");
}

TEST_F(AddUserTest, RefusedBeforeAnythingIsTouched) {
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("bob")), 26u);
  EXPECT_EQ(add(user("Bob")), 26u);
  EXPECT_EQ(add(user("ROOT")), 26u);
  EXPECT_EQ(add(user("")), 20u);
  EXPECT_EQ(AddUser(nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AddUserTest, BusyLockLeavesTheLocksBeforeIt) {
  write("/tmp/smbpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("dave")), 34u);
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AddUserTest, FailedStepBringsEveryFileBack) {
  struct Case {
    const char* command;
    int nth;
    unsigned result;
    std::string last;  // the step that failed; the restore comes next
  };
  // After the eight copies of the backup come the group file and, twice, the lists.
  const Case cases[] = {
      {"edquota", 1, 32, "/usr/bin/edquota [-u] [dave]"},
      {"smbpasswd", 1, 256, "/usr/sbin/smbpasswd [-a] [dave] [word-77]"},
      {"cp", 9, 34, copy_back_to("/etc/group")},
      {"cp", 11, 34, copy_back_to("/etc/usrgrp.info")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.command) + std::to_string(c.nth));
    SetUp();
    const Snapshot before = snapshot();
    fail_command(c.command, c.nth);
    EXPECT_EQ(add(user("dave")), c.result);
    EXPECT_EQ(changes(before), joined({kBackups, {std::string("+") + kQuotaFile}}));
    const Strings all = commands();
    const Strings end = joined({{c.last}, restore_of(kFiles)});
    ASSERT_GT(all.size(), end.size());
    EXPECT_EQ(Strings(all.end() - static_cast<std::ptrdiff_t>(end.size()), all.end()), end);
  }
  SetUp();
  fail_command("cp", 10);  // the first of two
  EXPECT_EQ(add(user("dave")), 0u);
}

TEST_F(AddUserTest, FileThatDoesNotParseOrOpenBringsTheOthersBack) {
  struct Case {
    const char* path;
    const char* content;  // null: there is no such file
    unsigned result;
  };
  const Case cases[] = {
      {"/etc/usrgrp.info", "everyone=bob:1,alice\n", 24},
      {"/etc/usrgrp.info", "everyone=bob:1,,alice:1\n", 24},
      {"/etc/usrgrp.info", "everyone=bob:1,\n", 24},
      {"/etc/usrgrp.info", nullptr, 21},
      {"/etc/group", "everyone:x:501:a-member-with-more-than-forty-characters-1\n", 24},
      {"/etc/group", nullptr, 21},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    SetUp();
    c.content == nullptr ? (void)unlink(c.path) : write(c.path, c.content);
    const Snapshot before = snapshot();
    EXPECT_EQ(add(user("dave")), c.result);
    EXPECT_EQ(changes(before), joined({kBackups, {std::string("+") + kQuotaFile}}));
  }
}

TEST_F(AddUserTest, AccountThatCanNotBeWrittenEndsBeforeTheTools) {
  std::filesystem::remove("/etc/passwd");
  std::filesystem::create_symlink("/nowhere/passwd", "/etc/passwd");
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("dave")), 21u);
  EXPECT_EQ(changes(before), kBackups);
  EXPECT_EQ(commands(), joined({backup_of(kFiles), restore_of(kFiles)}));
}

TEST_F(AddUserTest, WithoutTemporaryFileTheGroupStepFails) {
  std::filesystem::remove_all("/harddisk/volume_1/conf/tmp");
  const Snapshot before = snapshot();
  EXPECT_EQ(add(user("dave")), 22u);
  EXPECT_EQ(changes(before), joined({kBackups, {std::string("+") + kQuotaFile}}));
}

TEST_F(AddUserTest, MissingSmbAccountFileAndIgnoredChildSignalDoNotMatter) {
  ASSERT_EQ(unlink("/etc/samba/smbpasswd"), 0);
  ASSERT_EQ(mkdir("/etc/samba/smbpasswd", 0700), 0);  // it can not be opened either
  (void)signal(SIGCHLD, SIG_IGN);
  const unsigned result = [] {
    const UserInfo dave = user("dave");
    return AddUser(&dave);
  }();
  EXPECT_EQ(result, 0u);
  EXPECT_EQ(UserExist("dave"), 1);
}

TEST_F(AddUserTest, QuotaIsSetOnEveryDisk) {
  struct Case {
    std::vector<int> volumes;
    bool logical;
    const char* limits;
  };
  const Case cases[] = {
      {{1}, false, "/dev/sda1 0 5120 5120 0 0 0\n"},
      {{2}, false, "/dev/sdb1 0 5120 5120 0 0 0\n"},
      {{1, 2}, true, "/dev/sda1 0 5120 5120 0 0 0\n/dev/sdb1 0 5120 5120 0 0 0\n"},
      {{3, 4, 5}, false, "/dev/md0 0 5120 5120 0 0 0\n"},
      {{1, 5}, true, "/dev/sda1 0 5120 5120 0 0 0\n/dev/LVM/lv0 0 5120 5120 0 0 0\n"},
  };
  for (const Case& c : cases) {
    SetUp();
    unmount_volume(1);
    for (const int volume : c.volumes) mount_volume(volume);
    std::filesystem::remove_all("/dev/LVM");
    if (c.logical) {
      std::filesystem::create_directory("/dev/LVM");
      write("/dev/LVM/lv0", "");
    }
    EXPECT_EQ(SetUserQuota("a\"b", 5), 0u);
    EXPECT_EQ(read(kQuotaFile), c.limits);
    EXPECT_EQ(commands(), Strings({"/usr/bin/edquota [-u] [a\"b]"}));
  }
  std::filesystem::remove_all("/dev/LVM");
}

TEST_F(AddUserTest, QuotaWithoutDiskOnlyRemovesAnOldPrototype) {
  unmount_volume(1);
  mount_volume(3);
  write(kQuotaFile, "old");
  EXPECT_EQ(SetUserQuota("bob", 5), 0u);
  EXPECT_FALSE(exists(kQuotaFile));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AddUserTest, QuotaFailures) {
  fail_command("edquota", 1);
  EXPECT_EQ(SetUserQuota("bob", 0), 32u);
  EXPECT_EQ(read(kQuotaFile), "/dev/sda1 0 0 0 0 0 0\n");
  EXPECT_EQ(SetUserQuota(nullptr, 0), 20u);
  ASSERT_EQ(unlink(kQuotaFile), 0);
  std::filesystem::create_directory(kQuotaFile);
  clear_commands();
  EXPECT_EQ(SetUserQuota("bob", 0), 21u);
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
