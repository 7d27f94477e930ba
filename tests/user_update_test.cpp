// Changing users: names, descriptions, passwords, ids and quotas.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/device_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};
const Strings kBackups = backups_left({".htpasswd", "group", "passwd", "smbpasswd", "usrgrp.info"});
constexpr char kWebPassword[] = "/home/httpd/html/Management/.htpasswd";
constexpr char kUnchanged[] = "Qx7Rm2Lp9Tb4Vk";
constexpr char kQuotaTool[] = "/usr/bin/edquota [-u] [robert]";

class UpdateUserTest : public DeviceTest {
 protected:
  static UserInfo user(const char* name, const char* password, unsigned quota = 5, int uid = 0,
                       const char* description = "Robert F") {
    UserInfo record{};
    (void)std::snprintf(record.name, sizeof record.name, "%s", name);
    (void)std::snprintf(record.description, sizeof record.description, "%s", description);
    (void)std::snprintf(record.password, sizeof record.password, "%s", password);
    record.quota = quota;
    record.uid = uid;
    return record;
  }

  static unsigned update(const char* old_name, const UserInfo& record) {
    return UpdateUser(old_name, &record);
  }

  static std::string line_of(const std::string& name) {
    const std::string all = "\n" + read("/etc/passwd");
    const std::size_t start = all.find("\n" + name + ":");
    EXPECT_NE(start, std::string::npos) << name;
    return start == std::string::npos ? ""
                                      : all.substr(start + 1, all.find('\n', start + 1) - start);
  }

  static bool ends_with(const Strings& all, const Strings& end) {
    return all.size() >= end.size() &&
           Strings(all.end() - static_cast<std::ptrdiff_t>(end.size()), all.end()) == end;
  }
};

TEST_F(UpdateUserTest, NewNameStandsInEveryFile) {
  write("/etc/samba/smbpasswd",
        "\nalice:2000:A:\r\n\r\nbobby:2003:Y:\nbob:2001:X:::\nbob:9:second:\ncarol:2002:Z:");
  write(
      "/etc/group",
      "administrators:x:500:\n\nbob:x:600:alice,bob\nstaff:x:601: bob ,, carol,bobby \nshort:bob\n"
      "last:x:602:Bob,bob");
  write("/etc/usrgrp.info",
        "everyone=  alice:500,bob:1000\nno key\n\n\r\nstaff=bob:1000,carol:0:7\nempty=\r\n"
        "blanks=   \nbob=Bob:1,bob:2,bob:3");
  EXPECT_EQ(update("bob", user("robert", "twelve-chars", 4294967295u, 2077)), 0u);
  EXPECT_EQ(line_of("robert"), "robert:JqslE51ymq35.:2077:501:Robert F:JqvNhx3pYBt0k:/dev/null\n");
  EXPECT_EQ(read("/etc/passwd").find("\nbob:"), std::string::npos);
  EXPECT_EQ(read("/etc/samba/smbpasswd"),
            "alice:2000:A:\r\nbobby:2003:Y:\nrobert:2001:X:::\nbob:9:second:\ncarol:2002:Z:");
  EXPECT_EQ(mode("/harddisk/volume_1/conf/smbpasswd"), 0600u);
  EXPECT_EQ(owner("/harddisk/volume_1/conf/smbpasswd"), "0:500");
  EXPECT_EQ(
      read("/etc/group"),
      "administrators:x:500:\n\nbob:x:600:alice,robert\nstaff:x:601:robert,carol,bobby\nshort:bob\n"
      "last:x:602:Bob,robert\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=alice:500,robert:4294967295\n\n\r\nstaff=robert:4294967295,carol:0:7\n"
            "empty=\nblanks=\nbob=Bob:1,robert:4294967295,robert:4294967295\n");
  EXPECT_EQ(read("/tmp/edquota.tmp"), "/dev/sda1 0 4398046510080 4398046510080 0 0 0\n");
  EXPECT_EQ(IsUserPassCorrect("robert", "twelve-chars"), 1);
}

TEST_F(UpdateUserTest, StepsRunInOrder) {
  EXPECT_EQ(update("bob", user("robert", "word-77")), 0u);
  const std::string accounts = copy_back_to("/etc/passwd");
  EXPECT_EQ(commands(),
            joined({backup_of(kFiles),
                    {accounts, "sync", "sleep 1", "/usr/sbin/smbpasswd [bob] [word-77]",
                     "/usr/sbin/smbstatus [2001]", copy_back_to("/etc/samba/smbpasswd"),
                     "/bin/chown [root:administrators] [/etc/samba/smbpasswd]",
                     "/bin/chmod [600] [/etc/samba/smbpasswd]", "sync", copy_back_to("/etc/group"),
                     accounts, accounts, copy_back_to("/etc/usrgrp.info"), kQuotaTool}}));
}

TEST_F(UpdateUserTest, SameNameAndPasswordTouchOnlyDescriptionIdAndQuota) {
  const Snapshot before = snapshot();
  EXPECT_EQ(update("bob", user("bob", kUnchanged, 0, 2050, "")), 0u);
  EXPECT_EQ(line_of("bob"), "bob:JqQWboHRjM1TQ:2050:501::JqFLR.1Mk.Tvk:/dev/null\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0,alice:500,bob:0,carol:0\nadministrators=admin:0\n"
            "staff=alice:500,bob:0\nfamily=alice:500,carol:0\n");
  Strings expected = kBackups;
  expected.insert(expected.begin() + 2, "~/harddisk/volume_1/conf/passwd");
  expected.insert(expected.begin() + 5, "~/harddisk/volume_1/conf/usrgrp.info");
  expected.emplace_back("+/tmp/edquota.tmp");
  EXPECT_EQ(changes(before), expected);
  EXPECT_EQ(commands(),
            joined({backup_of(kFiles),
                    {copy_back_to("/etc/passwd"), "sync", "sleep 1",
                     copy_back_to("/etc/usrgrp.info"), "/usr/bin/edquota [-u] [bob]"}}));
}

TEST_F(UpdateUserTest, IdOfZeroKeepsTheOldOneAndNoPasswordIsHashedToo) {
  EXPECT_EQ(update("bob", user("bob", "", 5, 0)), 0u);
  EXPECT_EQ(line_of("bob"), "bob:JqQ7vIFy3N7KM:2001:501:Robert F::/dev/null\n");
  const Strings all = commands();
  EXPECT_NE(std::find(all.begin(), all.end(), "/usr/sbin/smbpasswd [-n] [bob]"), all.end());
}

TEST_F(UpdateUserTest, AccountFileIsReadInPieces) {
  const std::string long_line(127, 'x');
  // A piece in the middle of a line that looks like the user is not the user.
  write("/etc/passwd", "bob:old:2001:501:" + std::string(200, 'd') + "::/dev/null\n" + long_line +
                           "bob:inside\n" + long_line + "\nbobby:x:2002:501:::\nbob:x:7:7:twice::");
  EXPECT_EQ(update("bob", user("bob", kUnchanged)), 0u);
  const std::string line = "bob:old:2001:501:Robert F::/dev/null\n";
  EXPECT_EQ(read("/etc/passwd"),
            line + long_line + "bob:inside\n" + long_line + "\nbobby:x:2002:501:::\n" + line);
}

TEST_F(UpdateUserTest, SmbAccountFileIsReadInPieces) {
  const std::string piece(255, 'x');
  write("/etc/samba/smbpasswd",
        piece + "bob:inside\n" + piece + "\nbob:2001:X:" + piece + "y\n" + piece + "y\n");
  EXPECT_EQ(update("bob", user("robert", kUnchanged)), 0u);
  // A line of exactly one piece loses its line feed.
  EXPECT_EQ(read("/etc/samba/smbpasswd"),
            piece + "bob:inside\n" + piece + "robert:2001:X:" + piece + "y\n" + piece + "y\n");
}

TEST_F(UpdateUserTest, GroupFileWithoutTheUserStaysAsItIs) {
  write("/etc/group", "root:x:0:\nstaff:x:600: alice , carol\n");
  EXPECT_EQ(update("bob", user("robert", kUnchanged)), 0u);
  EXPECT_EQ(read("/etc/group"), "root:x:0:\nstaff:x:600: alice , carol\n");
  const Strings all = commands();
  EXPECT_EQ(std::count(all.begin(), all.end(), copy_back_to("/etc/group")), 0);
}

TEST_F(UpdateUserTest, NamesAndPasswordsAreEscapedForTheShell) {
  const char hostile[] = "a\"$(x)`y`\\z";
  write("/etc/passwd", read("/etc/passwd") + hostile + ":x:2003:501:::/dev/null\n");
  EXPECT_EQ(update(hostile, user(hostile, "$HOME\"`id`\\")), 0u);
  const Strings all = commands();
  EXPECT_TRUE(ends_with(
      all, {R"(/usr/sbin/smbpasswd [a"$(x)`y`\z] [$HOME"`id`\])", "/usr/sbin/smbstatus [2003]",
            copy_back_to("/etc/usrgrp.info"), R"(/usr/bin/edquota [-u] [a"$(x)`y`\z])"}))
      << testing::PrintToString(all);
}

TEST_F(UpdateUserTest, AdministratorsPasswordIsTheWebPasswordToo) {
  EXPECT_EQ(update("admin", user("admin", "seventeen-chars17", 0)), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jqr1JlAeMZwd2,Jq4uGX0cPmeMk\n");
  EXPECT_EQ(mode("/harddisk/volume_1/conf/.htpasswd"), 0600u);
  ASSERT_EQ(chmod(kWebPassword, 0644), 0);
  EXPECT_EQ(update("admin", user("admin", "new-pass", 0)), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jq6iwScNcq9Qo\n");
  EXPECT_EQ(mode("/harddisk/volume_1/conf/.htpasswd"), 0600u);
  EXPECT_EQ(update("admin", user("admin", kUnchanged, 0)), 0u);
  EXPECT_EQ(update("bob", user("bob", "other", 0)), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jq6iwScNcq9Qo\n");
}

TEST_F(UpdateUserTest, WebPasswordThatCanNotBeOpenedUndoesEverythingUnreported) {
  std::filesystem::remove_all("/home/httpd/html/Management");
  const Snapshot before = snapshot();
  EXPECT_EQ(update("admin", user("admin", "new-pass", 9)), 0u);
  EXPECT_EQ(changes(before), kBackups);
  EXPECT_TRUE(
      ends_with(commands(), joined({{copy_back_to("/etc/usrgrp.info")}, restore_of(kFiles)})));
}

TEST_F(UpdateUserTest, RefusedBeforeAnythingIsTouched) {
  write("/etc/passwd", read("/etc/passwd") + "two:x:2100:501:::\n");
  const Snapshot before = snapshot();
  struct Case {
    const char* old_name;
    const char* new_name;
    unsigned result;
  };
  const Case cases[] = {
      {nullptr, "bob", 20},  {"bob", "", 20},      {"", "bob", 30},      {"ghost", "ghost", 30},
      {"ghost", "new", 30},  {"bob", "alice", 30}, {"bob", "ALICE", 30}, {"bob", "Bob", 30},
      {"bob", "daemon", 30}, {"Bob", "Bob", 30},   {"ghost", "bob", 30},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(update(c.old_name, user(c.new_name, kUnchanged)), c.result) << c.new_name;
  }
  EXPECT_EQ(UpdateUser("bob", nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(UpdateUserTest, BusyLockLeavesTheLocksBeforeIt) {
  write("/tmp/webpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(update("bob", user("bob", kUnchanged)), 53u);
  EXPECT_EQ(changes(before),
            Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/smbpass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(UpdateUserTest, FailedStepBringsEveryFileBack) {
  struct Case {
    const char* command;
    int nth;
    unsigned result;
    const char* last;  // the step that failed; the restore comes next
    const char* more;  // what else is left behind
  };
  // After the ten copies of the backup come the password file, the SMB password file, the group
  // file, the password file twice and the lists.
  const std::string accounts = copy_back_to("/etc/passwd");
  const std::string smb_accounts = copy_back_to("/etc/samba/smbpasswd");
  const std::string groups = copy_back_to("/etc/group");
  const std::string lists = copy_back_to("/etc/usrgrp.info");
  const Case cases[] = {
      {"cp", 11, 30, "sync", ""},
      {"smbpasswd", 1, 256, "/usr/sbin/smbpasswd [bob] [word-77]", ""},
      {"cp", 12, 30, smb_accounts.c_str(), ""},
      {"cp", 13, 30, groups.c_str(), ""},
      {"cp", 15, 30, accounts.c_str(), ""},
      {"cp", 16, 28, lists.c_str(), ""},
      {"edquota", 1, 32, kQuotaTool, "+/tmp/edquota.tmp"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.command) + std::to_string(c.nth));
    SetUp();
    // Restoring copies the content; the group of the file stays as the renaming left it.
    ASSERT_EQ(chown("/etc/samba/smbpasswd", 0, 500), 0);
    const Snapshot before = snapshot();
    fail_command(c.command, c.nth);
    EXPECT_EQ(update("bob", user("robert", "word-77")), c.result);
    EXPECT_EQ(changes(before), *c.more == '\0' ? kBackups : joined({kBackups, {c.more}}));
    EXPECT_TRUE(ends_with(commands(), joined({{c.last}, restore_of(kFiles)})))
        << testing::PrintToString(commands());
  }
}

TEST_F(UpdateUserTest, StatusOfTheOtherCommandsDoesNotCount) {
  (void)signal(SIGCHLD, SIG_IGN);
  fail_command("smbstatus", 0);
  fail_command("chown", 0);
  fail_command("chmod", 0);
  fail_command("cp", 14);  // the first of two
  EXPECT_EQ(update("bob", user("robert", "word-77")), 0u);
  EXPECT_EQ(UserExist("robert"), 1);
}

TEST_F(UpdateUserTest, FileThatDoesNotParseOrOpenBringsTheOthersBack) {
  struct Case {
    const char* path;
    const char* content;  // null: there is no such file
    unsigned result;
  };
  const Case cases[] = {
      {"/etc/samba/smbpasswd", "alice:2000:X:\nbobby:2001:\nbob\n", 30},
      {"/etc/samba/smbpasswd", nullptr, 21},
      {"/etc/group", nullptr, 21},
      {"/etc/usrgrp.info", "everyone=bob:1,alice\n", 24},
      {"/etc/usrgrp.info", "everyone=bob:1,\n", 24},
      {"/etc/usrgrp.info", "staff=alice,bob:1\n", 24},
      {"/etc/usrgrp.info", nullptr, 21},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    SetUp();
    ASSERT_EQ(chown("/etc/samba/smbpasswd", 0, 500), 0);
    c.content == nullptr ? (void)unlink(c.path) : write(c.path, c.content);
    const Snapshot before = snapshot();
    EXPECT_EQ(update("bob", user("robert", kUnchanged)), c.result);
    EXPECT_EQ(changes(before), kBackups);
  }
}

TEST_F(UpdateUserTest, WithoutTemporaryFileOnlyTheLocksGo) {
  std::filesystem::remove_all("/harddisk/volume_1/conf/tmp");
  const Snapshot before = snapshot();
  EXPECT_EQ(update("bob", user("robert", "word-77")), 22u);
  EXPECT_EQ(changes(before), kBackups);
  EXPECT_EQ(commands(), backup_of(kFiles));  // nothing is restored
}

TEST_F(UpdateUserTest, FullFieldsAreReadToTheirEnd) {
  UserInfo record;
  std::memset(&record, 'w', sizeof record);
  record.quota = 1;
  record.uid = 2001;
  EXPECT_EQ(UpdateUser("bob", &record), 0u);
  EXPECT_EQ(line_of(std::string(20, 'w')), std::string(20, 'w') + ":JqlSBSZyrQISU:2001:501:" +
                                               std::string(48, 'w') + ":Jq5TGiIV1HNqI:/dev/null\n");
}

}  // namespace
