// Changing users: names, descriptions, passwords, ids and quotas.
#include <sys/stat.h>

#include <csignal>

#include "tests/account_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};
constexpr char kWebPassword[] = "/home/httpd/html/Management/.htpasswd";
constexpr char kUnchanged[] = "Qx7Rm2Lp9Tb4Vk";

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
                     accounts, accounts, copy_back_to("/etc/usrgrp.info"),
                     "/usr/bin/edquota [-u] [robert]"}}));
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

TEST_F(UpdateUserTest, AdministratorsPasswordIsTheWebPasswordToo) {
  ASSERT_EQ(chmod(kWebPassword, 0644), 0);
  (void)signal(SIGCHLD, SIG_IGN);  // the tools' statuses are told all the same
  EXPECT_EQ(update("admin", user("admin", "seventeen-chars17")), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jqr1JlAeMZwd2,Jq4uGX0cPmeMk\n");
  EXPECT_EQ(mode("/harddisk/volume_1/conf/.htpasswd"), 0600u);
  EXPECT_EQ(update("admin", user("admin", "new-pass")), 0u);
  EXPECT_EQ(update("admin", user("admin", kUnchanged)), 0u);
  EXPECT_EQ(update("bob", user("bob", "other")), 0u);
  EXPECT_EQ(read(kWebPassword), "admin:Jq6iwScNcq9Qo\n");
}

TEST_F(UpdateUserTest, TakenNamesAndMalformedFilesAreRefused) {
  const auto rename_bob = [] { return update("bob", user("robert")); };
  expect_refused("/etc/samba/smbpasswd", "bobby:2:\nbob\n", 30, rename_bob);
  for (const char* name : {"DAEMON", "alice", "Bob"}) {
    EXPECT_EQ(update("bob", user(name, kUnchanged)), 30u) << name;
  }
  EXPECT_EQ(update("ghost", user("new", kUnchanged)), 30u);
}

}  // namespace
