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

struct ListEdit {
  const char* what;
  MemberFunction function;
  const char* name;
  const char* names;
  std::string before; /* below the lines of "everyone" and others */
  unsigned result;
  std::string after;
};

const std::string kOthers = "everyone=bob:1000,carol:4294967295,dave:7\r\n\nstaffs=bob\nx=,\n";

TEST_F(MembershipTest, ListsOfMembers) {
  const ListEdit edits[] = {
      {"behind the others", AddUsersToGroup, "staff", "bob carol", "staff=alice:5,eve:x\n", 0,
       "staff=alice:5,eve:x,bob:1000,carol:4294967295\n"},
      {"no members yet", AddUsersToGroup, "staff", "bob carol", "staff=  \r\nfamily=\n", 0,
       "staff=bob:1000,carol:4294967295\nfamily=\n"},
      {"no line end", AddUsersToGroup, "staff", "bob", "staff= alice:5:6", 0,
       "staff=alice:5:6,bob:1000\n"},
      {"unknown user", AddUsersToGroup, "staff", "bob eve", "staff=\n", 34, "staff=\n"},
      {"too long a name", AddUsersToGroup, "staff", "twenty-characters-xxy", "staff=\n", 34,
       "staff=\n"},
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
  write("/etc/passwd", read("/etc/passwd") + "twenty-characters-xx:*:2003:501:::/dev/null\n");
  for (const ListEdit& edit : edits) {
    SCOPED_TRACE(edit.what);
    write(kUserGroups, kOthers + edit.before);
    write(kGroupFile, "staff:x:2000:\nfamily:x:2001:\n");
    EXPECT_EQ(in_process([&] { return call(edit.function, edit.name, edit.names); }), edit.result);
    EXPECT_EQ(read(kUserGroups), kOthers + edit.after);
    if (edit.result != 0) {
      EXPECT_EQ(read(kGroupFile), "staff:x:2000:\nfamily:x:2001:\n");
    }
    EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
  }
}

/* ---- Steps ---- */

struct Operation {
  MemberFunction function;
  const char* name;
  const char* names;
  unsigned busy;
  unsigned failure;
  int group_copies; /* how often each file is copied; the last status counts */
  int list_copies;
  Strings at_end;
};

const Operation kOperations[] = {
    {AddUsersToGroup, "family", "bob", 31, 34, 1, 1, {"sync"}},
    {AddUserToGroups, "bob", "family", 31, 34, 1, 2, {}},
    {DelUsersFromGroup, "staff", "bob", 35, 35, 2, 2, {}},
    {DelUserFromGroups, "bob", "staff", 35, 35, 2, 2, {}},
};

/* The backups stay, the locks do not. */
TEST_F(MembershipTest, StepsAndWhatAFailedCopyUndoes) {
  const Strings backup = joined({backed_up("group"), backed_up("usrgrp.info")});
  const Strings restore = joined({restored("group"), restored("usrgrp.info")});
  const Strings settled = {"sync", "sleep 1"};
  for (const Operation& is : kOperations) {
    const Strings group = replaced("/etc/group", is.group_copies);
    const Strings list = replaced("/etc/usrgrp.info", is.list_copies);
    const int copies = 4 + is.group_copies; /* up to the list */
    const struct {
      int failing_copy;
      unsigned result;
      Strings commands;
    } cases[] = {
        {is.list_copies == 2 ? copies + 1 : 99, 0, joined({group, settled, list, settled})},
        {copies, is.failure, joined({group, restore})},
        {copies + is.list_copies, is.failure, joined({group, settled, list, restore})}};
    for (const auto& one : cases) {
      SetUp();
      fail_command("cp", one.failing_copy);
      const Snapshot before = snapshot();
      EXPECT_EQ(in_process([&] { return call(is.function, is.name, is.names); }), one.result);
      EXPECT_EQ(commands(), joined({backup, one.commands, is.at_end}));
      Strings left = changes(before);
      std::erase_if(left, [](const std::string& path) { return path.ends_with(".ttt"); });
      EXPECT_EQ(left, one.result == 0 ? Strings({"~/harddisk/volume_1/conf/group",
                                                 "~/harddisk/volume_1/conf/usrgrp.info"})
                                      : Strings());
    }
  }
}

/* The lock before the busy one stays. */
TEST_F(MembershipTest, Busy) {
  for (const Operation& is : kOperations) {
    SetUp();
    write("/tmp/user.lck", "");
    const Snapshot before = snapshot();
    EXPECT_EQ(call(is.function, is.name, is.names), is.busy);
    EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck"}));
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

TEST_F(MembershipTest, AddUsersToSysGroupFailures) {
  const auto add = [] { return call(AddUsersToSysGroup, "family", "bob"); };
  fail_command("cp", 1);
  EXPECT_EQ(in_process(add), 34u);
  EXPECT_EQ(commands(), replaced("/etc/group", 1));
  ASSERT_EQ(unlink(kGroupFile), 0);
  EXPECT_EQ(in_process(add), 21u);
  ASSERT_EQ(rmdir("/harddisk/volume_1/conf/tmp"), 0);
  EXPECT_EQ(in_process(add), 22u);
}

TEST_F(MembershipTest, MissingArguments) {
  const char* const names[] = {"bob", nullptr};
  for (const auto function : {AddUsersToSysGroup, AddUsersToGroup, AddUserToGroups,
                              DelUsersFromGroup, DelUserFromGroups}) {
    EXPECT_EQ(function(nullptr, names, 1), 20u);
    EXPECT_EQ(function("", names, 1), 20u);
    EXPECT_EQ(function("staff", nullptr, 1), 20u);
    EXPECT_EQ(function("staff", names, 0), 20u);
    EXPECT_EQ(function("staff", names, 2), 20u) << "a name in the array is missing";
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
  EXPECT_EQ(UserInGroup(nullptr, "staff") + UserInGroup("bob", nullptr), 0);
  write(kUserGroups, "staff=bob:1,alice\n");
  EXPECT_EQ(UserInGroup("bob", "staff"), 0) << "malformed behind the user";
}

TEST_F(MembershipTest, QueryFailuresLeaveTheRecord) {
  char* list[1] = {};
  GroupUserInfo record{"staff", 7, list};
  for (const auto query : {GetGroupUserInfo, GetUserGroupInfo}) {
    write(kUserGroups, "staff=bob\n");
    EXPECT_EQ(query(&record), 24u);
    ASSERT_EQ(unlink(kUserGroups), 0);
    EXPECT_EQ(query(&record), 21u);
    EXPECT_TRUE(record.count == 7 && record.list == list);
    GroupUserInfo nameless{};
    EXPECT_EQ(query(&nameless), 20u);
    EXPECT_EQ(query(nullptr), 20u);
  }
}

}  // namespace
