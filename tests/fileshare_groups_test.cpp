// fileshare group ...: what it shows, what it refuses before the library is asked.
#include <nlohmann/json.hpp>

#include "tests/device_test.h"

namespace {

using Json = nlohmann::json;

class FileshareGroupsTest : public DeviceTest {
 protected:
  static Outcome group(Strings arguments) {
    arguments.insert(arguments.begin(), {"fileshare", "group"});
    return run(arguments);
  }
};

TEST_F(FileshareGroupsTest, ShowsMembersRightsAndWhatIsMissing) {
  write("/etc/usrgrp.info", read("/etc/usrgrp.info") + "lost=bob:1000\n");
  const Json groups = Json::parse(group({"list", "--json"}).out);
  ASSERT_EQ(groups.size(), 5u);
  EXPECT_EQ(groups[0], Json::parse(R"({"name": "everyone", "gid": 501,
      "users": ["admin", "guest", "alice", "bob", "carol"],
      "writable_shares": ["DISK 1"], "read_only_shares": ["Music"]})"));
  EXPECT_EQ(Json::parse(group({"show", "lost", "--json"}).out),
            Json::parse(R"({"name": "lost", "gid": null, "users": ["bob"],
                "writable_shares": [], "read_only_shares": []})"));
  EXPECT_EQ(group({"members", "family"}).out, "NAME\nalice\ncarol\n");
}

TEST_F(FileshareGroupsTest, ChangesReachTheFiles) {
  EXPECT_EQ(group({"add", "team"}).status, 0);
  EXPECT_EQ(group({"add-user", "team", "bob", "carol"}).status, 0);
  EXPECT_EQ(group({"rename", "team", "crew"}).status, 0);
  EXPECT_EQ(group({"remove-user", "crew", "bob"}).status, 0);
  EXPECT_TRUE(read("/etc/group").ends_with("\ncrew:x:2002:carol\n"));
  EXPECT_TRUE(read("/etc/usrgrp.info").ends_with("\ncrew=carol:0\n"));
  write("/etc/group", "everyone:x:501:\n");
  EXPECT_EQ(group({"delete", "crew"}).status, 0) << "a group that one file has lost";
  EXPECT_EQ(read("/etc/usrgrp.info").find("crew"), std::string::npos);
}

TEST_F(FileshareGroupsTest, RefusalsSayWhyAndChangeNothing) {
  struct {
    Strings arguments;
    int status;
    std::string error;
  } const cases[] = {
      {{"show", "none"}, 1, "can not show group \"none\": there is no group of this name"},
      {{"members", "none"},
       1,
       "can not list the members of group \"none\": there is no group of "
       "this name"},
      {{"delete", "none"}, 1, "can not delete group \"none\": there is no group of this name"},
      {{"delete", "everyone"}, 1, "can not delete group \"everyone\": this group stays (code 42)"},
      {{"rename", "none", "team"},
       1,
       "can not rename group \"none\": there is no group of this "
       "name"},
      {{"add", "staff"}, 1, "can not add group \"staff\": a group of this name exists (code 43)"},
      {{"add-user", "none", "bob"},
       1,
       "can not add to group \"none\": there is no group of this "
       "name"},
      {{"add-user", "staff", "carol", "zed"},
       1,
       "can not add to group \"staff\": there is no user "
       "\"zed\""},
      {{"add-user", "staff", "carol", "carol"},
       1,
       "can not add to group \"staff\": user \"carol\" "
       "is named more than once"},
      {{"add-user", "staff", "carol", "bob"},
       1,
       "can not add to group \"staff\": one of the users "
       "is a member already; nobody was added (code 54)"},
      {{"delete-all"},
       2,
       "this would delete every group and every list of members; give --yes to "
       "have it done"},
  };
  const std::string groups = read("/etc/group");
  const std::string lists = read("/etc/usrgrp.info");
  for (const auto& refused : cases) {
    const Outcome outcome = group(refused.arguments);
    EXPECT_EQ(outcome.status, refused.status);
    EXPECT_EQ(outcome.error, "fileshare: " + refused.error + "\n");
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(group({"add", "a:b"}).status, 2);
  EXPECT_EQ(group({"add-user", "staff", "a,b"}).status, 2);
  EXPECT_EQ(read("/etc/group"), groups);
  EXPECT_EQ(read("/etc/usrgrp.info"), lists);
  EXPECT_EQ(group({"delete-all", "--yes"}).status, 0);
  EXPECT_EQ(read("/etc/usrgrp.info"), "");
}

}  // namespace
