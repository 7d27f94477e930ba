// fileshare group ...: what it shows, what it refuses before the library is asked.
#include "tests/fileshare_run.h"

namespace {

class FileshareGroupsTest : public FileshareRun {};

TEST_F(FileshareGroupsTest, ShowsMembersRightsAndWhatIsMissing) {
  write("/etc/usrgrp.info", read("/etc/usrgrp.info") + "lost=bob:1000\n");
  const Json groups = shown({"group", "list"});
  ASSERT_EQ(groups.size(), 5u);
  EXPECT_EQ(groups[0], Json::parse(R"({"name": "everyone", "gid": 501,
      "users": ["admin", "guest", "alice", "bob", "carol"],
      "writable_shares": ["DISK 1"], "read_only_shares": ["Music"]})"));
  EXPECT_EQ(shown({"group", "show", "lost"})["gid"], nullptr);
  expect({"group", "members", "family"}, "NAME\nalice\ncarol\n");
}

TEST_F(FileshareGroupsTest, ChangesReachTheFiles) {
  expect({"group", "add", "team"});
  expect({"group", "add-user", "team", "bob", "carol"});
  expect({"group", "rename", "team", "crew"});
  expect({"group", "remove-user", "crew", "bob"});
  EXPECT_TRUE(read("/etc/group").ends_with("\ncrew:x:2002:carol\n"));
  EXPECT_TRUE(read("/etc/usrgrp.info").ends_with("\ncrew=carol:0\n"));
  write("/etc/group", "everyone:x:501:\n");
  expect({"group", "delete", "crew"});  // a group that one file has lost
  EXPECT_EQ(read("/etc/usrgrp.info").find("crew"), std::string::npos);
  expect({"group", "delete-all", "--yes"});
  EXPECT_EQ(read("/etc/usrgrp.info"), "");
}

TEST_F(FileshareGroupsTest, RefusalsSayWhyAndChangeNothing) {
  const std::string none = " group \"none\": there is no group of this name\n";
  const std::string staff = "can not add to group \"staff\": ";
  expect_refused({
      {{"group", "members", "none"}, 1, "can not list the members of" + none},
      {{"group", "delete", "none"}, 1, "can not delete" + none},
      {{"group", "add-user", "none", "bob"}, 1, "can not add to" + none},
      {{"group", "add", "staff"}, 1, "can not add group \"staff\": a group of this name exists"},
      {{"group", "add-user", "staff", "carol", "zed"}, 1, staff + "there is no user \"zed\"\n"},
      {{"group", "add-user", "staff", "carol", "carol"}, 1, staff + "user \"carol\" is named more"},
      {{"group", "add-user", "staff", "a,b"}, 2, "USER: "},
      {{"group", "delete-all"}, 2, "this would delete every group and every list of members; give"},
  });
}

}  // namespace
