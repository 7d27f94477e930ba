// Deleting users.
#include <sys/mount.h>

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

TEST_F(DeleteUserTest, BuiltInUsersAndMalformedFilesAreRefused) {
  const auto delete_bob = [] { return DelUser("bob"); };
  expect_refused("/etc/group", "staff:x:600:bob\nno colon\n", 28, delete_bob);
  expect_refused("/etc/group", "staff:x:600:bob\n \n", 28, delete_bob);
  expect_refused("/etc/usrgrp.info", "everyone=bob:1\nstaff=alice\n", 28, delete_bob);
  EXPECT_EQ(DelUser("admin"), 27u);
  EXPECT_EQ(DelUser("guest"), 27u);
}

TEST_F(DeleteUserTest, AllButTheBuiltInOnesGo) {
  (void)signal(SIGCHLD, SIG_IGN);  // the tools' statuses are told all the same
  EXPECT_EQ(DelAllUser(), 0u);
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0\nadministrators=admin:0\nstaff=\nfamily=\n");
  EXPECT_EQ(GetNumOfUsers(), 2u);
  write("/etc/passwd", "bob\n");
  EXPECT_EQ(DelAllUser(), 28u);
}

TEST_F(DeleteUserTest, FileWithoutAWholeCopyStaysAsItIsWhenALaterStepFails) {
  const std::string copy = "/harddisk/volume_1/conf/passwd.ttt", group = read("/etc/group");
  write(copy, "root:old:0:0:::\n");
  ASSERT_EQ(mount(copy.c_str(), copy.c_str(), nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(mount(nullptr, copy.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
  const Strings lines = restore_of({"group", "usrgrp.info", "smbpasswd", ".htpasswd"});
  fail_command("cp", 16);
  EXPECT_EQ(DelUser("bob"), 28u);
  EXPECT_EQ(last_of(commands(), lines.size()), lines);
  EXPECT_EQ(read("/etc/passwd").find("bob:"), std::string::npos);
  EXPECT_TRUE(read("/etc/passwd").starts_with("root:x:0:0:"));
  EXPECT_EQ(read("/etc/group"), group);
}

}  // namespace
