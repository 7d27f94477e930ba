// Deleting users.
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/device_test.h"

namespace {

const Strings kFiles{"passwd", "group", "usrgrp.info", "smbpasswd", ".htpasswd"};

class DeleteUserTest : public DeviceTest {
 protected:
  // What a call that fails after its locks changes: nothing but the backups.
  static Strings only_backups() {
    return backups_left({".htpasswd", "group", "passwd", "smbpasswd", "usrgrp.info"});
  }
};

TEST_F(DeleteUserTest, UserLeavesEveryAccountFile) {
  write("/etc/passwd", "bob:x:1:1:first::\n" + read("/etc/passwd") + "bobby:x:2003:501:::\nbob:");
  write("/etc/group",
        "root:x:0:\n\nempty:x:1:\r\n\r\nstaff:x:600:alice,bob\nfamily:x:601:bob\n"
        "first:x:602:bob,alice\nboth:x:603:bob,alice,bob,,carol\r\nbobby:x:604:bobby,Bob, bob\n"
        "a:b:c:d:bob,x\nshort:bob\nlast:x:605:");
  write("/etc/usrgrp.info",
        "everyone=  bob:0,alice:100\n\nno key\nstaff=bob:0\nempty=\n \r\nfamily=alice:1,bob:2\r\n"
        "blanks=   \nbob=Bob:1,bobby:2,carol:3:4,bob:5");
  write("/home/httpd/html/Management/.htpasswd", "admin:a,b\nbob:c\n");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("bob"), 0u);
  EXPECT_EQ(read("/etc/group"),
            "root:x:0:\n\nempty:x:1:\n\r\nstaff:x:600:alice\nfamily:x:601:\n"
            "first:x:602:alice\nboth:x:603:alice,carol\nbobby:x:604:bobby,Bob, bob\n"
            "a:b:c:d:x\nshort:\nlast:x:605:\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=alice:100\n\nstaff=\nempty=\nfamily=alice:1\n"
            "blanks=\nbob=Bob:1,bobby:2,carol:3:4\n");
  EXPECT_EQ(read("/home/httpd/html/Management/.htpasswd"), "admin:a,b\n");
  EXPECT_EQ(read("/etc/passwd").find("\nbob:"), std::string::npos);
  EXPECT_NE(read("/etc/passwd").find("\nbobby:"), std::string::npos);
  EXPECT_EQ(read("/etc/passwd").rfind("root:", 0), 0u);
  EXPECT_EQ(changes(before).size(), 10u);  // five files and their backups
}

TEST_F(DeleteUserTest, StepsRunInOrder) {
  EXPECT_EQ(DelUser("bob"), 0u);
  const std::string accounts = copy_back_to("/etc/passwd");
  const std::string smb_accounts = copy_back_to("/etc/samba/smbpasswd");
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"/usr/sbin/smbstatus [2001]", accounts, accounts, smb_accounts,
                                 smb_accounts, "sync", copy_back_to("/etc/group"), "sync",
                                 copy_back_to("/etc/usrgrp.info"), "sync"}}));
}

TEST_F(DeleteUserTest, UnknownNameIsNobodyToDisconnect) {
  mount_volume(2);
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("Admin"), 0u);
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"sync", copy_back_to("/etc/group"), "sync",
                                 copy_back_to("/etc/usrgrp.info"), "sync",
                                 "/bin/cp [-f] [/harddisk/volume_1/conf/passwd] "
                                 "[/harddisk/volume_2/conf/passwd]",
                                 "/bin/cp [-f] [/harddisk/volume_1/conf/smbpasswd] "
                                 "[/harddisk/volume_2/conf/smbpasswd]",
                                 "/bin/cp [-f] [/harddisk/volume_1/conf/group] "
                                 "[/harddisk/volume_2/conf/group]",
                                 "/bin/cp [-f] [/harddisk/volume_1/conf/usrgrp.info] "
                                 "[/harddisk/volume_2/conf/usrgrp.info]"}}));
  EXPECT_EQ(
      changes(before),
      joined({only_backups(),
              {"+/harddisk/volume_2/conf/group", "+/harddisk/volume_2/conf/passwd",
               "+/harddisk/volume_2/conf/smbpasswd", "+/harddisk/volume_2/conf/usrgrp.info"}}));
}

TEST_F(DeleteUserTest, BuiltInUsersAndMissingNamesAreRefused) {
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("admin"), 27u);
  EXPECT_EQ(DelUser("guest"), 27u);
  EXPECT_EQ(DelUser(""), 20u);
  EXPECT_EQ(DelUser(nullptr), 20u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(DeleteUserTest, BusyLockLeavesTheLocksBeforeIt) {
  write("/tmp/smbpass.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("bob"), 28u);
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "+/tmp/pass.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_F(DeleteUserTest, FailedCopyBringsEveryFileBack) {
  // After the ten copies of the backup: the password and SMB password files twice each, then the
  // group file and the lists once.
  for (const int copy : {12, 14, 15, 16}) {
    SCOPED_TRACE(copy);
    SetUp();
    const Snapshot before = snapshot();
    fail_command("cp", copy);
    EXPECT_EQ(DelUser("bob"), 28u);
    EXPECT_EQ(changes(before), only_backups());
    const Strings all = commands();
    const Strings restore = restore_of(kFiles);
    ASSERT_GT(all.size(), restore.size());
    EXPECT_EQ(Strings(all.end() - static_cast<std::ptrdiff_t>(restore.size()), all.end()), restore);
  }
  for (const int copy : {11, 13}) {  // the first of two
    SetUp();
    fail_command("cp", copy);
    EXPECT_EQ(DelUser("bob"), 0u) << copy;
  }
}

TEST_F(DeleteUserTest, FailedCopyOfTheGroupFileIsStillSynced) {
  fail_command("cp", 15);
  EXPECT_EQ(DelUser("bob"), 28u);
  const std::string accounts = copy_back_to("/etc/passwd");
  const std::string smb_accounts = copy_back_to("/etc/samba/smbpasswd");
  EXPECT_EQ(commands(), joined({backup_of(kFiles),
                                {"/usr/sbin/smbstatus [2001]", accounts, accounts, smb_accounts,
                                 smb_accounts, "sync", copy_back_to("/etc/group"), "sync"},
                                restore_of(kFiles)}));
}

TEST_F(DeleteUserTest, MalformedFileBringsEveryFileBack) {
  struct Case {
    const char* path;
    const char* content;
  };
  const Case cases[] = {
      {"/etc/group", "staff:x:600:bob\nno colon\n"},
      {"/etc/group", "staff:x:600:bob\n \n"},
      {"/etc/usrgrp.info", "everyone=bob:1,alice:2\nstaff=alice\n"},
      {"/etc/usrgrp.info", "everyone=alice:2,bob:1,\n"},
      {"/etc/usrgrp.info", "everyone=alice:2,,bob:1\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.content);
    SetUp();
    write(c.path, c.content);
    const Snapshot before = snapshot();
    EXPECT_EQ(DelUser("bob"), 28u);
    EXPECT_EQ(changes(before), only_backups());
  }
}

TEST_F(DeleteUserTest, MissingFileBringsTheOthersBack) {
  for (const char* path : {"/etc/group", "/etc/usrgrp.info"}) {
    SetUp();
    ASSERT_EQ(unlink(path), 0);
    const Snapshot before = snapshot();
    EXPECT_EQ(DelUser("bob"), 28u);
    EXPECT_EQ(changes(before), only_backups()) << path;
  }
  for (const char* path :
       {"/etc/passwd", "/home/httpd/html/Management/.htpasswd", "/etc/samba/smbpasswd"}) {
    SetUp();
    ASSERT_EQ(unlink(path), 0);
    const Snapshot before = snapshot();
    EXPECT_EQ(DelUser("bob"), 28u);
    // Deleting lines leaves the temporary file of a file that it can not open.
    Strings expected = only_backups();
    expected.insert(expected.end() - 1, "+/harddisk/volume_1/conf/tmp/tmpfile.XXXXXX");
    EXPECT_EQ(changes(before), expected) << path;
  }
  SetUp();
  std::filesystem::remove_all("/harddisk/volume_1/conf/tmp");
  const Snapshot before = snapshot();
  EXPECT_EQ(DelUser("bob"), 28u);
  EXPECT_EQ(changes(before), only_backups());
}

TEST_F(DeleteUserTest, IgnoredChildSignalAndSmbstatusDoNotMatter) {
  (void)signal(SIGCHLD, SIG_IGN);
  fail_command("smbstatus", 0, 3);
  EXPECT_EQ(DelUser("bob"), 0u);
  EXPECT_EQ(UserExist("bob"), 0);
}

TEST_F(DeleteUserTest, AllButTheBuiltInOnesGo) {
  EXPECT_EQ(DelAllUser(), 0u);
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0\nadministrators=admin:0\nstaff=\nfamily=\n");
  EXPECT_EQ(GetNumOfUsers(), 2u);
  clear_commands();
  const Snapshot before = snapshot();
  EXPECT_EQ(DelAllUser(), 0u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings({"sync"}));
}

TEST_F(DeleteUserTest, FirstUserThatStaysEndsTheDeletionOfAll) {
  fail_command("cp", 32);  // the second user's copy of the lists
  EXPECT_EQ(in_process(DelAllUser), 28u);
  EXPECT_EQ(UserExist("alice"), 0);
  EXPECT_EQ(UserExist("bob"), 1);
  EXPECT_EQ(UserExist("carol"), 1);
  write("/etc/passwd", "bob\n");
  EXPECT_EQ(DelAllUser(), 28u);
}

}  // namespace
