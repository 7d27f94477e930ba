// fileshare user add, update, rename, set-password, quota, delete and delete-all.
#include "tests/fileshare_run.h"

namespace {

class FileshareUserTest : public FileshareRun {
 protected:
  static std::string account(const std::string& name) {
    return run({"grep", "^" + name + ":", "/etc/passwd"}).out;
  }
};

TEST_F(FileshareUserTest, WholeLifeOfAUser) {
  EXPECT_EQ(fileshare({"user", "add", "dave", "--description", "Dave Miller", "--quota", "250",
                       "--group", "staff", "--group", "family"},
                      "word-77\n")
                .error,
            "");
  write("/etc/samba/smbpasswd", "dave:2003:X:\n");  // what Samba's tool would have done
  expect({"user", "update", "dave", "--quota", "4294967295"});
  EXPECT_EQ(account("dave"), "dave:Jq5EBTBqUeV2g:2003:501:Dave Miller::/dev/null\n");
  expect({"user", "update", "dave", "--description", "", "--uid", "2010"});
  expect({"user", "rename", "dave", "david"});
  EXPECT_EQ(fileshare({"user", "set-password", "david"}, "twelve-chars\n").error, "");
  EXPECT_EQ(account("david"), "david:JqslE51ymq35.:2010:501::JqvNhx3pYBt0k:/dev/null\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0,alice:500,bob:1000,carol:0,david:4294967295\n"
            "administrators=admin:0\nstaff=alice:500,bob:1000,david:4294967295\n"
            "family=alice:500,carol:0,david:4294967295\n");
  expect({"user", "delete", "david"});
  EXPECT_EQ(account("david"), "");
  expect({"user", "delete-all", "--yes"});
  EXPECT_EQ(account("alice") + account("bob") + account("carol"), "");
}

TEST_F(FileshareUserTest, QuotaWithoutANumberIsTheListedOneSetAgain) {
  const Snapshot before = snapshot();
  expect({"user", "quota", "bob"});
  EXPECT_EQ(changes(before), Strings({"+/tmp/edquota.tmp"}));
  EXPECT_EQ(read("/tmp/edquota.tmp"), "/dev/sda1 0 1024000 1024000 0 0 0\n");
  expect({"user", "quota", "bob", "7"});
  EXPECT_EQ(read("/tmp/edquota.tmp"), "/dev/sda1 0 7168 7168 0 0 0\n");
  EXPECT_EQ(run({"grep", "-c", "bob:7", "/etc/usrgrp.info"}).out, "2\n");
}

TEST_F(FileshareUserTest, SystemAccountsAndStrangersAreNotUsers) {
  for (const std::string name : {"root", "Bob", "ghost"}) {
    const std::string why = " user \"" + name + "\": there is no user of this name (code 33)\n";
    expect_refused({{{"user", "delete", name}, 1, "can not delete" + why},
                    {{"user", "update", name}, 1, "can not update" + why},
                    {{"user", "rename", name, "new"}, 1, "can not rename user \"" + name},
                    {{"user", "set-password", name}, 1, "can not set the password of" + why}});
  }
  write("/etc/usrgrp.info", "everyone=bob:1,ghost:2\n");
  expect({"user", "delete", "ghost"});  // left over in the list alone
  EXPECT_EQ(read("/etc/usrgrp.info"), "everyone=bob:1\n");
}

TEST_F(FileshareUserTest, RefusalsTellTheReasonAndHostileArgumentsReachNoFile) {
  expect_refused({
      {{"user", "add", "bob"},
       1,
       "can not add user \"bob\": a user of this name exists (code 26)\n"},
      {{"user", "add", "a:b"}, 2, "NAME: "},
      {{"user", "rename", "bob", "a,b"}, 2, "NEW-NAME: "},
      {{"user", "add", "d", "--quota", "4294967296"}, 2, "Could not convert: --quota = "},
      {{"user", "add", "d", "--group", "a=b"}, 2, "--group: "},
      {{"user", "update", "bob", "--description", "a:b"}, 2, "--description: "},
      {{"user", "update", "bob", "--uid", "0"}, 2, "--uid: "},
      {{"user", "delete-all"}, 2, "this would delete "},
  });
  EXPECT_EQ(
      fileshare({"user", "add", "--group", "everyone", "dave"}, "x\n").error,
      "fileshare: can not put the new user \"dave\" into the groups: one of them has the user "
      "already (code 54)\n");
}

}  // namespace
