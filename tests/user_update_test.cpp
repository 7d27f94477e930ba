// Changing users: names, descriptions, passwords, ids and quotas.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/account_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};
constexpr char kWebPassword[] = "/home/httpd/html/Management/.htpasswd";
constexpr char kUnchanged[] = "Qx7Rm2Lp9Tb4Vk";
constexpr char kQuotaTool[] = "/usr/bin/edquota [-u] [robert]";

class UpdateUserTest : public AccountTest {
 protected:
  static unsigned update(const char* old_name, const UserInfo& record) {
    return UpdateUser(old_name, &record);
  }

  static std::string line_of(const std::string& name) {
    return run({"grep", "^" + name + ":", "/etc/passwd"}).out;
  }
};

TEST_F(UpdateUserTest, NewNameStandsInEveryFileStepByStep) {
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
  const std::string accounts = copy_back_to("/etc/passwd");
  EXPECT_EQ(commands(),
            joined({backup_of(kFiles),
                    {accounts, "sync", "sleep 1", "/usr/sbin/smbpasswd [bob] [twelve-chars]",
                     "/usr/sbin/smbstatus [2001]", copy_back_to("/etc/samba/smbpasswd"),
                     "/bin/chown [root:administrators] [/etc/samba/smbpasswd]",
                     "/bin/chmod [600] [/etc/samba/smbpasswd]", "sync", copy_back_to("/etc/group"),
                     accounts, accounts, copy_back_to("/etc/usrgrp.info"), kQuotaTool}}));
  EXPECT_EQ(line_of("robert"),
            "robert:JqslE51ymq35.:2077:501:Dave Miller:JqvNhx3pYBt0k:/dev/null\n");
  EXPECT_EQ(line_of("bob"), "");
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
}

TEST_F(UpdateUserTest, SameNameAndPasswordTouchOnlyTheirLinesAndIdOfZeroNotTheId) {
  EXPECT_EQ(update("bob", user("bob", kUnchanged, 0, 2050)), 0u);
  EXPECT_EQ(line_of("bob"), "bob:JqQWboHRjM1TQ:2050:501:Dave Miller:JqFLR.1Mk.Tvk:/dev/null\n");
  EXPECT_EQ(commands(),
            joined({backup_of(kFiles),
                    {copy_back_to("/etc/passwd"), "sync", "sleep 1",
                     copy_back_to("/etc/usrgrp.info"), "/usr/bin/edquota [-u] [bob]"}}));
  EXPECT_EQ(update("bob", user("bob", "")), 0u);
  EXPECT_EQ(line_of("bob"), "bob:JqQ7vIFy3N7KM:2050:501:Dave Miller::/dev/null\n");
  EXPECT_EQ(last_of(commands(), 4).front(), "/usr/sbin/smbpasswd [-n] [bob]");
}

TEST_F(UpdateUserTest, AccountFilesAreReadInPieces) {
  // A piece in the middle of a line that looks like the user is not the user.
  const std::string accounts =
      std::string(127, 'x') + "bob:inside\n" + std::string(127, 'x') + "\nbobby:x:2002:501:::\n";
  write("/etc/passwd", "bob:old:2001:501:" + std::string(200, 'd') + "::/dev/null\n" + accounts +
                           "bob:x:7:7:twice::");
  EXPECT_EQ(update("bob", user("bob", kUnchanged)), 0u);
  const std::string line = "bob:old:2001:501:Dave Miller::/dev/null\n";
  EXPECT_EQ(read("/etc/passwd"), line + accounts + line);

  const std::string piece(255, 'x');
  write("/etc/samba/smbpasswd", piece + "bob:inside\n" + piece + "\nbob:2001:" + piece + "y\n");
  EXPECT_EQ(update("bob", user("robert", kUnchanged)), 0u);
  // A line of exactly one piece loses its line feed.
  EXPECT_EQ(read("/etc/samba/smbpasswd"),
            piece + "bob:inside\n" + piece + "robert:2001:" + piece + "y\n");
}

TEST_F(UpdateUserTest, FullFieldsAreReadToTheirEnd) {
  UserInfo record;
  std::memset(&record, 'w', sizeof record);
  EXPECT_EQ(update("bob", record), 0u);
  EXPECT_NE(line_of(std::string(20, 'w')).find(":" + std::string(48, 'w') + ":"),
            std::string::npos);
}

TEST_F(UpdateUserTest, GroupFileWithoutTheUserStaysAsItIs) {
  write("/etc/group", "root:x:0:\nstaff:x:600: alice , carol\n");
  EXPECT_EQ(update("bob", user("robert", kUnchanged)), 0u);
  EXPECT_EQ(read("/etc/group"), "root:x:0:\nstaff:x:600: alice , carol\n");
}

TEST_F(UpdateUserTest, NamesAndPasswordsAreEscapedForTheShell) {
  const char hostile[] = "a\"$(x)`y`\\z";
  write("/etc/passwd", read("/etc/passwd") + hostile + ":x:2003:501:::/dev/null\n");
  EXPECT_EQ(update(hostile, user(hostile, "$HOME\"`id`\\")), 0u);
  EXPECT_EQ(
      last_of(commands(), 4),
      Strings({R"(/usr/sbin/smbpasswd [a"$(x)`y`\z] [$HOME"`id`\])", "/usr/sbin/smbstatus [2003]",
               copy_back_to("/etc/usrgrp.info"), R"(/usr/bin/edquota [-u] [a"$(x)`y`\z])"}));
}

TEST_F(UpdateUserTest, AdministratorsPasswordIsTheWebPasswordTooOrAllIsUndoneUnreported) {
  ASSERT_EQ(chmod(kWebPassword, 0644), 0);
  EXPECT_EQ(update("admin", user("admin", "seventeen-chars17")), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jqr1JlAeMZwd2,Jq4uGX0cPmeMk\n");
  EXPECT_EQ(mode("/harddisk/volume_1/conf/.htpasswd"), 0600u);
  EXPECT_EQ(update("admin", user("admin", "new-pass")), 0u);
  EXPECT_EQ(update("admin", user("admin", kUnchanged)), 0u);
  EXPECT_EQ(update("bob", user("bob", "other")), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jq6iwScNcq9Qo\n");

  std::filesystem::remove_all("/home/httpd/html/Management");
  const Snapshot before = snapshot();
  EXPECT_EQ(update("admin", user("admin", "other")), 0u);  // undone, but not reported
  EXPECT_EQ(changes(before), Strings({"~/harddisk/volume_1/conf/passwd.ttt",
                                      "~/harddisk/volume_1/conf/usrgrp.info.ttt"}));
  EXPECT_EQ(last_of(commands(), 11),
            joined({{copy_back_to("/etc/usrgrp.info")}, restore_of(kFiles)}));
}

TEST_F(UpdateUserTest, RefusedBeforeAnythingIsTouched) {
  write("/tmp/webpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(update(nullptr, user("bob", kUnchanged)), 20u);
  EXPECT_EQ(update("bob", user("", kUnchanged)), 20u);
  EXPECT_EQ(update("ghost", user("new", kUnchanged)), 30u);
  for (const char* name : {"DAEMON", "alice", "Bob"}) {
    EXPECT_EQ(update("bob", user(name, kUnchanged)), 30u) << name;
  }
  EXPECT_EQ(UpdateUser("bob", nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(update("bob", user("bob", kUnchanged)), 53u);  // busy: the locks before it stay
  EXPECT_EQ(changes(before),
            Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/smbpass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(UpdateUserTest, FailedStepBringsEveryFileBack) {
  const std::string accounts = copy_back_to("/etc/passwd");
  const std::string smb_accounts = copy_back_to("/etc/samba/smbpasswd");
  // Restoring copies the content; the group of the file stays as the renaming left it, which can
  // not be found without the group file.
  const Strings owned{"~/harddisk/volume_1/conf/smbpasswd"};
  const std::vector<Fault> faults{
      {[] { fail_command("smbpasswd", 1); }, 256, "/usr/sbin/smbpasswd [bob] [word-77]"},
      {[] { write("/etc/samba/smbpasswd", "bobby:2:\nbob\n"); }, 30, "/usr/sbin/smbstatus [2001]"},
      {[] { (void)unlink("/etc/group"); }, 21, "sync"},
      {[] { write("/etc/usrgrp.info", "staff=alice,bob:1\n"); }, 24, accounts, owned},
      {[] { (void)unlink("/etc/usrgrp.info"); }, 21, accounts, owned},
      // The backup takes ten copies; the second change of the password file takes two.
      {[] { fail_command("cp", 11); }, 30, "sync"},
      {[] { fail_command("cp", 12); }, 30, smb_accounts},
      {[] { fail_command("cp", 13); }, 30, copy_back_to("/etc/group"), owned},
      {[] { fail_command("cp", 15); }, 30, accounts, owned},
      {[] { fail_command("cp", 16); }, 28, copy_back_to("/etc/usrgrp.info"), owned},
      {[] { fail_command("edquota", 1); }, 32, kQuotaTool, joined({owned, {"+/tmp/edquota.tmp"}})},
  };
  expect_restored(kFiles, faults, [] { return update("bob", user("robert")); });
}

TEST_F(UpdateUserTest, StatusOfTheOtherCommandsDoesNotCount) {
  (void)signal(SIGCHLD, SIG_IGN);
  for (const char* tool : {"smbstatus", "chown", "chmod"}) fail_command(tool, 0);
  fail_command("cp", 14);  // the first of two
  EXPECT_EQ(update("bob", user("robert", "word-77")), 0u);
}

TEST_F(UpdateUserTest, WithoutTemporaryFileOnlyTheLocksGo) {
  std::filesystem::remove_all("/harddisk/volume_1/conf/tmp");
  const Snapshot before = snapshot();
  EXPECT_EQ(update("bob", user("robert", "word-77")), 22u);
  EXPECT_EQ(changes(before), left_by(kFiles));
  EXPECT_EQ(commands(), backup_of(kFiles));  // nothing is restored
}

}  // namespace
