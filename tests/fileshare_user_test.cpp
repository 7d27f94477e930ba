// fileshare user add, update, rename, set-password, quota, delete and delete-all.
#include "tests/device_test.h"

namespace {

class FileshareUserTest : public DeviceTest {
 protected:
  static Outcome user(Strings arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), {"fileshare", "user"});
    return run(arguments, input);
  }

  static void expect_refused(const Outcome& outcome, int status, const std::string& error) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "fileshare: " + error + "\n");
  }

  static std::string account(const std::string& name) {
    return run({"grep", "^" + name + ":", "/etc/passwd"}).out;
  }
};

TEST_F(FileshareUserTest, WholeLifeOfAUser) {
  EXPECT_EQ(user({"add", "dave", "--description", "Dave Miller", "--quota", "250", "--group",
                  "staff", "--group", "family"},
                 "word-77\n")
                .error,
            "");
  EXPECT_EQ(account("dave"), "dave:Jq5EBTBqUeV2g:2003:501:Dave Miller::/dev/null\n");
  write("/etc/samba/smbpasswd", "dave:2003:X:\n");  // what Samba's tool would have done
  EXPECT_EQ(user({"update", "dave", "--quota", "4294967295"}).error, "");
  EXPECT_EQ(account("dave"), "dave:Jq5EBTBqUeV2g:2003:501:Dave Miller::/dev/null\n");
  EXPECT_EQ(user({"update", "dave", "--description", "", "--uid", "2010"}).error, "");
  EXPECT_EQ(user({"rename", "dave", "david"}).error, "");
  EXPECT_EQ(user({"set-password", "david"}, "twelve-chars\n").error, "");
  EXPECT_EQ(account("david"), "david:JqslE51ymq35.:2010:501::JqvNhx3pYBt0k:/dev/null\n");
  EXPECT_EQ(read("/etc/usrgrp.info"),
            "everyone=admin:0,guest:0,alice:500,bob:1000,carol:0,david:4294967295\n"
            "administrators=admin:0\nstaff=alice:500,bob:1000,david:4294967295\n"
            "family=alice:500,carol:0,david:4294967295\n");
  const Outcome deleted = user({"delete", "david"});
  EXPECT_EQ(deleted.status, 0);
  EXPECT_EQ(deleted.out + deleted.error, "");
  EXPECT_EQ(account("david"), "");
}

TEST_F(FileshareUserTest, QuotaWithoutANumberIsTheListedOneSetAgain) {
  const Snapshot before = snapshot();
  EXPECT_EQ(user({"quota", "bob"}).status, 0);
  EXPECT_EQ(changes(before), Strings({"+/tmp/edquota.tmp"}));
  EXPECT_EQ(read("/tmp/edquota.tmp"), "/dev/sda1 0 1024000 1024000 0 0 0\n");
  EXPECT_EQ(user({"quota", "bob", "7"}).status, 0);
  EXPECT_EQ(read("/tmp/edquota.tmp"), "/dev/sda1 0 7168 7168 0 0 0\n");
  EXPECT_EQ(run({"grep", "-c", "bob:7", "/etc/usrgrp.info"}).out, "2\n");
  write("/tmp/user.lck", "");
  expect_refused(user({"quota", "bob"}), 1,
                 "can not set the quota of user \"bob\": another change is under way (see lock "
                 "list)");
  EXPECT_TRUE(exists("/tmp/user.lck"));
}

TEST_F(FileshareUserTest, SystemAccountsAndStrangersAreNotUsers) {
  const Snapshot before = snapshot();
  for (const char* name : {"root", "Bob", "ghost"}) {
    const std::string who = std::string(" user \"") + name + "\"";
    const std::string why = ": there is no user of this name (code 33)";
    expect_refused(user({"delete", name}), 1, "can not delete" + who + why);
    expect_refused(user({"update", name}), 1, "can not update" + who + why);
    expect_refused(user({"rename", name, "new"}), 1, "can not rename" + who + " to \"new\"" + why);
    expect_refused(user({"set-password", name}, "x\n"), 1,
                   "can not set the password of" + who + why);
  }
  EXPECT_EQ(changes(before), Strings());
  write("/etc/usrgrp.info", "everyone=bob:1,ghost:2\n");
  EXPECT_EQ(user({"delete", "ghost"}).status, 0);  // left over in the list alone
  EXPECT_EQ(read("/etc/usrgrp.info"), "everyone=bob:1\n");
}

TEST_F(FileshareUserTest, RefusalsTellTheReason) {
  expect_refused(user({"add", "bob"}, "\n"), 1,
                 "can not add user \"bob\": a user of this name exists (code 26)");
  expect_refused(user({"rename", "bob", "alice"}), 1,
                 "can not rename user \"bob\" to \"alice\": the new name is taken, or a file can "
                 "not be written (code 30)");
  expect_refused(user({"delete", "guest"}), 1,
                 "can not delete user \"guest\": this user always exists (code 27)");
  fail_command("smbpasswd", 1, 2);
  expect_refused(user({"add", "dave"}, "x\n"), 1,
                 "can not add user \"dave\": Samba's password tool failed (code 512)");
  expect_refused(user({"add", "--group", "everyone", "dave"}, "x\n"), 1,
                 "can not put the new user \"dave\" into the groups: one of them has the user "
                 "already (code 54)");
}

TEST_F(FileshareUserTest, HostileArgumentsReachNoFile) {
  const Snapshot before = snapshot();
  for (const Strings& arguments :
       {Strings{"add", "a:b"}, Strings{"add", "a$b"}, Strings{"rename", "bob", "a,b"},
        Strings{"add", "twenty-one-characters"}, Strings{"add", "d", "--quota", "-1"},
        Strings{"add", "d", "--quota", "4294967296"}, Strings{"add", "d", "--group", "a=b"},
        Strings{"update", "bob", "--description", "a:b"}, Strings{"update", "bob", "--uid", "0"},
        Strings{"delete-all"}}) {
    EXPECT_EQ(user(arguments, "x\n").status, 2) << arguments.back();
  }
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(user({"delete-all", "--yes"}).status, 0);
  EXPECT_EQ(account("alice") + account("bob") + account("carol"), "");
}

}  // namespace
