/* Membership in both group files: the lists of /etc/usrgrp.info, the order of the steps, what is
 * left after a failure, and the queries. */
#include <malloc.h>

#include <cstring>

#include "filesharing/groups.h"
#include "tests/account_commands.h"
#include "tests/member_calls.h"

namespace {

const char kGroupFile[] = "/harddisk/volume_1/conf/group";
const char kUserGroups[] = "/harddisk/volume_1/conf/usrgrp.info";

class MembershipTest : public DeviceTest {};

const std::string kOthers = "everyone=bob:1000,carol:4294967295,dave:7\r\n\nstaffs=bob\nx=,\n";

TEST_F(MembershipTest, ListsOfMembers) {
  const struct {
    const char* what;
    MemberFunction function;
    const char* name;
    const char* names;
    std::string before; /* below the lines of "everyone" and others */
    unsigned result;
    std::string after;
  } edits[] = {
      {"behind the others", AddUsersToGroup, "staff", "bob carol", "staff=alice:5,eve:x\n", 0,
       "staff=alice:5,eve:x,bob:1000,carol:4294967295\n"},
      {"no members yet", AddUsersToGroup, "staff", "bob carol", "staff=  \r\nfamily=\n", 0,
       "staff=bob:1000,carol:4294967295\nfamily=\n"},
      {"no line end", AddUsersToGroup, "staff", "bob", "staff= alice:5:6", 0,
       "staff=alice:5:6,bob:1000\n"},
      {"unknown user", AddUsersToGroup, "staff", "bob eve", "staff=\n", 34, "staff=\n"},
      {"no number", AddUsersToGroup, "staff", "bob", "staff=a:1,\n", 34, "staff=a:1,\n"},
      {"into several", AddUserToGroups, "bob", "family none staff",
       "staff=alice:5\nwork=\nfamily=\r\n", 0, "staff=alice:5,bob:1000\nwork=\nfamily=bob:1000\n"},
      {"each of them", DelUsersFromGroup, "staff", "bob x alice",
       "staff= alice:1,Bob:2,bob:3,bob:4,carol:\r\n", 0, "staff=Bob:2,carol:\n"},
      {"the last one", DelUsersFromGroup, "staff", "bob", "staff=bob:5", 0, "staff=\n"},
      {"no number, when removing", DelUsersFromGroup, "staff", "bob", "staff=bob\n", 35,
       "staff=bob\n"},
      {"from several", DelUserFromGroups, "bob", "staff family",
       "staff=bob:1,a:2\nwork=bob:1\nfamily=bob:1", 0, "staff=a:2\nwork=bob:1\nfamily=\n"},
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(edit.what);
    write(kUserGroups, kOthers + edit.before);
    write(kGroupFile, "staff:x:2000:\nfamily:x:2001:\n");
    EXPECT_EQ(in_process([&] { return call(edit.function, edit.name, edit.names); }), edit.result);
    EXPECT_EQ(read(kUserGroups), kOthers + edit.after);
  }
}

/* ---- Steps ---- */

TEST_F(MembershipTest, CommandsInTheirOrder) {
  const std::tuple<std::function<unsigned()>, int, int, Strings> cases[] = {
      {[] { return call(AddUsersToGroup, "family", "bob"); }, 1, 1, {"sync"}},
      {[] { return call(AddUserToGroups, "bob", "family"); }, 1, 2, {}},
      {[] { return call(DelUsersFromGroup, "staff", "bob"); }, 2, 2, {}},
      {[] { return call(DelUserFromGroups, "bob", "staff"); }, 2, 2, {}},
  };
  const Strings settled = {"sync", "sleep 1"};
  for (const auto& [change, group_copies, list_copies, at_end] : cases) {
    SetUp();
    EXPECT_EQ(in_process(change), 0u);
    EXPECT_EQ(commands(), joined({backed_up("group"), backed_up("usrgrp.info"),
                                  replaced("/etc/group", group_copies), settled,
                                  replaced("/etc/usrgrp.info", list_copies), settled, at_end}));
  }
}

/* One of the list is a member: nothing happens, not even a lock. */
TEST_F(MembershipTest, MembersAreNotAddedAgain) {
  const Snapshot before = snapshot();
  EXPECT_EQ(call(AddUsersToGroup, "staff", "carol bob"), 54u);
  EXPECT_EQ(call(AddUserToGroups, "carol", "staff family"), 54u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(MembershipTest, AMissingNameInTheListIsRefused) {
  const char* const names[] = {"bob", nullptr};
  for (const auto function : {AddUsersToSysGroup, AddUsersToGroup, AddUserToGroups,
                              DelUsersFromGroup, DelUserFromGroups}) {
    EXPECT_EQ(function("staff", names, 2), 20u);
  }
}

/* ---- Queries ---- */

/* The result, and the names when it is 0. */
using Answer = std::pair<unsigned, Strings>;
using Query = unsigned (*)(GroupUserInfo*);

Answer ask(Query query, const char* name) {
  GroupUserInfo record{};
  (void)snprintf(record.name, sizeof record.name, "%s", name);
  const unsigned result = query(&record);
  Strings names(record.list, record.list + record.count);
  FreeGroupUserInfo(&record);
  return {result, names};
}

TEST_F(MembershipTest, UsersOfAGroupAndGroupsOfAUser) {
  const struct {
    Query query;
    const char* lines;
    const char* name;
    Answer answer;
  } cases[] = {
      {GetGroupUserInfo,
       "staffs=x:1\nstaff= a:1,b:2:3,:4\r\nstaff=c:1\n",
       "staff",
       {0, {"a", "b", ""}}},
      {GetGroupUserInfo, "staff=d:0", "staff", {0, {"d"}}},
      {GetGroupUserInfo, "staff=   \r\nstaff=a:1\n", "staff", {}},
      {GetGroupUserInfo, "staffs=a\n", "staff", {}},
      {GetGroupUserInfo, "staff=a:1,,b:2\n", "staff", {24, {}}},
      {GetUserGroupInfo,
       "\n\r\na=bob:1,bob:2\n=bob:1\nno key\nb=Bob:1\r\nc= bob:0",
       "bob",
       {0, {"a", "a", "c"}}},
      {GetUserGroupInfo, "a=bobby:1\n", "bob", {}},
      {GetUserGroupInfo, "a=bob:1\nb=alice\nc=bob:1\n", "bob", {24, {}}},
  };
  for (const auto& one : cases) {
    write(kUserGroups, one.lines);
    EXPECT_EQ(ask(one.query, one.name), one.answer) << one.lines;
  }
}

/* What stands behind the last name that is taken does not matter, malformed or not. */
TEST_F(MembershipTest, At255NamesTheListEnds) {
  std::string members = "staff=";
  std::string groups;
  Strings names;
  for (int i = 0; i < 255; ++i) {
    names.push_back("m" + std::to_string(i));
    members += names.back() + ":0,";
    groups += names.back() + "=bob:0\n";
  }
  write(kUserGroups, members + "malformed\n");
  EXPECT_EQ(ask(GetGroupUserInfo, "staff"), Answer(0, names));
  write(kUserGroups, groups + "m255=alice:0,bob:0,malformed\n");
  EXPECT_EQ(ask(GetUserGroupInfo, "bob"), Answer(0, names));
}

TEST_F(MembershipTest, NamesOfUsersCanGrowInTheirPlaces) {
  GroupUserInfo group{"staff", 0, nullptr};
  EXPECT_EQ(GetGroupUserInfo(&group), 0u);
  ASSERT_EQ(group.count, 2);
  EXPECT_GE(malloc_usable_size(group.list[0]), strlen("alice") + 20);
  FreeGroupUserInfo(&group);
}

TEST_F(MembershipTest, UserInGroup) {
  EXPECT_EQ(UserInGroup("bob", "staff"), 1);
  EXPECT_EQ(UserInGroup("Bob", "staff"), 0);
  write(kUserGroups, "staff=bob:1,alice\n");
  EXPECT_EQ(UserInGroup("bob", "staff"), 0) << "malformed behind the user";
}

TEST_F(MembershipTest, QueryFailuresLeaveTheRecord) {
  char* list[1] = {};
  GroupUserInfo record{"staff", 7, list};
  write(kUserGroups, "staff=bob\n");
  for (const auto query : {GetGroupUserInfo, GetUserGroupInfo}) EXPECT_EQ(query(&record), 24u);
  EXPECT_TRUE(record.count == 7 && record.list == list);
}

}  // namespace
