// Deleting users.
#include <unistd.h>

#include <csignal>

#include "tests/account_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};
constexpr char kWebPasswords[] = "/home/httpd/html/Management/.htpasswd";

class DeleteUserTest : public AccountTest {};

TEST_F(DeleteUserTest, UserLeavesEveryAccountFileStepByStep) {
  write("/etc/passwd", "bob:x:1:1:first::\nroot:x:0:0:::\nbobby:x:2003:501:::\nbob:");
  write("/etc/group",
        "root:x:0:\n\nempty:x:1:\r\n\r\nstaff:x:600:alice,bob\nfamily:x:601:bob\n"
        "first:x:602:bob,alice\nboth:x:603:bob,alice,bob,,carol\r\nbobby:x:604:bobby,Bob, bob\n"
        "a:b:c:d:bob,x\nshort:bob\nlast:x:605:");
  write("/etc/usrgrp.info",
        "everyone=  bob:0,alice:100\n\nno key\nstaff=bob:0\nempty=\n \r\nfamily=alice:1,bob:2\r\n"
        "blanks=   \nbob=Bob:1,bobby:2,carol:3:4,bob:5");
  write(kWebPasswords, "admin:a,b\nbob:c\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("bob"), 0u);
  EXPECT_EQ(read("/etc/group"),
            "root:x:0:\n\nempty:x:1:\n\r\nstaff:x:600:alice\nfamily:x:601:\n"
            "first:x:602:alice\nboth:x:603:alice,carol\nbobby:x:604:bobby,Bob, bob\n"
            "a:b:c:d:x\nshort:\nlast:x:605:\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=alice:100\n\nstaff=\nempty=\nfamily=alice:1\n"
            "blanks=\nbob=Bob:1,bobby:2,carol:3:4\n");
  EXPECT_EQ(read(kWebPasswords), "admin:a,b\n");
  EXPECT_EQ(read("/etc/passwd"), "root:x:0:0:::\nbobby:x:2003:501:::\n");
  EXPECT_EQ(changes(before).size(), 10u);  // five files and their backups
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"/usr/sbin/smbstatus [1]"},
                                replaced("/etc/passwd", 2),
                                replaced(kWebPasswords, 2),
                                replaced("/etc/samba/smbpasswd", 2),
                                {"sync", copy_back_to("/etc/group"), "sync",
                                 copy_back_to("/etc/usrgrp.info"), "sync"}}));
}

TEST_F(DeleteUserTest, UnknownNameIsNobodyToDisconnect) {
  EXPECT_EQ(DelUser("Admin"), 0u);
  EXPECT_EQ(commands().at(10), "sync");  // the group file follows the backup
}

TEST_F(DeleteUserTest, RefusedBeforeAnythingIsTouched) {
  write("/tmp/smbpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("admin"), 27u);
  EXPECT_EQ(DelUser("guest"), 27u);
  EXPECT_EQ(DelUser(""), 20u);
  EXPECT_EQ(DelUser(nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(DelUser("bob"), 28u);  // busy: the locks before it stay
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(DeleteUserTest, FailedStepBringsEveryFileBack) {
  const std::string accounts = copy_back_to("/etc/passwd");
  const std::string smb_accounts = copy_back_to("/etc/samba/smbpasswd");
  // Deleting lines leaves the temporary file of a file that it can not open.
  const Strings temporary{"+/harddisk/volume_1/conf/tmp/tmpfile.XXXXXX"};
  const std::vector<Fault> faults{
      {[] { (void)unlink("/etc/passwd"); }, 28, backed_up(".htpasswd").back(), temporary},
      {[] { (void)unlink(kWebPasswords); }, 28, accounts, temporary},
      {[] { (void)unlink("/etc/samba/smbpasswd"); }, 28, accounts, temporary},
      {[] { (void)unlink("/etc/group"); }, 28, smb_accounts},
      {[] { write("/etc/group", "staff:x:600:bob\nno colon\n"); }, 28, smb_accounts},
      {[] { write("/etc/group", "staff:x:600:bob\n \n"); }, 28, smb_accounts},
      {[] { (void)unlink("/etc/usrgrp.info"); }, 28, "sync"},
      {[] { write("/etc/usrgrp.info", "everyone=bob:1,alice:2\nstaff=alice\n"); }, 28, "sync"},
      // The backup takes ten copies, the password and SMB password files two each.
      {[] { fail_command("cp", 12); }, 28, accounts},
      {[] { fail_command("cp", 14); }, 28, smb_accounts},
      {[] { fail_command("cp", 15); }, 28, "sync"},
      {[] { fail_command("cp", 16); }, 28, "sync"},
  };
  expect_restored(kFiles, faults, [] { return DelUser("bob"); });
}

TEST_F(DeleteUserTest, IgnoredChildSignalSmbstatusAndFirstOfTwoCopiesDoNotMatter) {
  (void)signal(SIGCHLD, SIG_IGN);
  fail_command("smbstatus", 0, 3);
  fail_command("cp", 11);
  EXPECT_EQ(DelUser("bob"), 0u);
}

TEST_F(DeleteUserTest, AllButTheBuiltInOnesGoUntilOneStays) {
  fail_command("cp", 32);  // the second user's copy of the lists
  EXPECT_EQ(in_process(DelAllUser), 28u);
  EXPECT_EQ(GetNumOfUsers(), 4u);
  EXPECT_EQ(UserExist("alice"), 0);
  EXPECT_EQ(DelAllUser(), 0u);
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0\nadministrators=admin:0\nstaff=\nfamily=\n");
  EXPECT_EQ(GetNumOfUsers(), 2u);
  write("/etc/passwd", "bob\n");
  EXPECT_EQ(DelAllUser(), 28u);
}

}  // namespace
