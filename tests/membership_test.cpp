/* Membership in both group files: the lists of /etc/usrgrp.info, the order of the steps, what is
 * left after a failure, and the queries. */
#include <functional>

#include "filesharing/groups.h"
#include "tests/account_commands.h"

namespace {

const char kGroupFile[] = "/harddisk/volume_1/conf/group";
const char kUserGroups[] = "/harddisk/volume_1/conf/usrgrp.info";

using Function = unsigned (*)(const char*, const char* const*, int);
using Names = std::vector<const char*>;

unsigned call(Function function, const char* name, const Names& names) {
  return function(name, names.data(), static_cast<int>(names.size()));
}

class MembershipTest : public DeviceTest {};

struct ListEdit {
  const char* what;
  Function function;
  const char* name;
  Names names;
  std::string before; /* below the lines of "everyone" and an unrelated group */
  std::string after;  /* empty: the call fails and the file stays */
};

const std::string kOthers = "everyone=bob:1000,carol:4294967295,dave:7\r\n\nstaffs=bob\nx=,\n";

TEST_F(MembershipTest, ListsOfMembers) {
  const ListEdit edits[] = {
      {"behind the others",
       AddUsersToGroup,
       "staff",
       {"bob", "carol"},
       "staff=alice:5,eve:x\n",
       "staff=alice:5,eve:x,bob:1000,carol:4294967295\n"},
      {"no members yet",
       AddUsersToGroup,
       "staff",
       {"bob", "carol"},
       "staff=  \r\nfamily=\n",
       "staff=bob:1000,carol:4294967295\nfamily=\n"},
      {"last line without its end",
       AddUsersToGroup,
       "staff",
       {"bob"},
       "staff= alice:5:6",
       "staff=alice:5:6,bob:1000\n"},
      {"group without a line", AddUsersToGroup, "none", {"nobody-knows"}, "staff=a:1", "staff=a:1"},
      {"unknown user", AddUsersToGroup, "staff", {"bob", "eve"}, "staff=\n", ""},
      {"name too long for a user",
       AddUsersToGroup,
       "staff",
       {"twenty-characters-xxy"},
       "staff=\n",
       ""},
      {"item without a number", AddUsersToGroup, "staff", {"bob"}, "staff=a:1,b\n", ""},
      {"comma at the end", AddUsersToGroup, "staff", {"bob"}, "staff=a:1,\n", ""},
      {"into several",
       AddUserToGroups,
       "bob",
       {"family", "none", "staff"},
       "staff=alice:5\nwork=\nfamily=\r\n",
       "staff=alice:5,bob:1000\nwork=\nfamily=bob:1000\n"},
      {"unknown user into several", AddUserToGroups, "eve", {"staff"}, "staff=\n", ""},
      {"item without a number, into several", AddUserToGroups, "bob", {"staff"}, "staff=a\n", ""},
      {"each of them",
       DelUsersFromGroup,
       "staff",
       {"bob", "x", "alice"},
       "staff= alice:1,Bob:2,bob:3,bob:4,carol:\r\n",
       "staff=Bob:2,carol:\n"},
      {"the last one", DelUsersFromGroup, "staff", {"bob"}, "staff=bob:5", "staff=\n"},
      {"from an empty list", DelUsersFromGroup, "staff", {"bob"}, "staff= \n", "staff=\n"},
      {"item without a number, when removing",
       DelUsersFromGroup,
       "staff",
       {"bob"},
       "staff=bob\n",
       ""},
      {"from several",
       DelUserFromGroups,
       "bob",
       {"staff", "family"},
       "staff=bob:1,a:2\nwork=bob:1\nfamily=bob:1",
       "staff=a:2\nwork=bob:1\nfamily=\n"},
  };
  write("/etc/passwd", read("/etc/passwd") + "twenty-characters-xx:*:2003:501:::/dev/null\n");
  for (const ListEdit& edit : edits) {
    SCOPED_TRACE(edit.what);
    const bool removes = edit.function == DelUsersFromGroup || edit.function == DelUserFromGroups;
    write(kUserGroups, kOthers + edit.before);
    write(kGroupFile, "staff:x:2000:\nfamily:x:2001:\n");
    EXPECT_EQ(in_process([&] { return call(edit.function, edit.name, edit.names); }),
              !edit.after.empty() ? 0u
              : removes           ? 35u
                                  : 34u);
    EXPECT_EQ(read(kUserGroups), kOthers + (edit.after.empty() ? edit.before : edit.after));
    if (edit.after.empty()) {
      EXPECT_EQ(read(kGroupFile), "staff:x:2000:\nfamily:x:2001:\n");
    }
    EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
  }
}

/* ---- Steps ---- */

struct Operation {
  const char* name;
  Function function;
  const char* first;
  Names names;
  unsigned busy;
  unsigned failure;
  int group_copies; /* how often each file is copied; the last status counts */
  int list_copies;
  bool syncs_at_end;
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

class MembershipStepsTest : public MembershipTest, public testing::WithParamInterface<Operation> {
 protected:
  static unsigned run() {
    const Operation& operation = GetParam();
    return in_process([&] { return call(operation.function, operation.first, operation.names); });
  }
  static Strings settled(const std::string& path, int copies) {
    return joined({replaced(path, copies), {"sync", "sleep 1"}});
  }
  static Strings at_end() { return GetParam().syncs_at_end ? Strings{"sync"} : Strings(); }

  const Strings backup_ = joined({backed_up("group"), backed_up("usrgrp.info")});
  const Strings restore_ = joined({restored("group"), restored("usrgrp.info")});
  const Strings group_ = settled("/etc/group", GetParam().group_copies);
  const Strings list_ = settled("/etc/usrgrp.info", GetParam().list_copies);
};

INSTANTIATE_TEST_SUITE_P(
    Membership, MembershipStepsTest,
    testing::Values(
        Operation{"add_users", AddUsersToGroup, "family", {"bob"}, 31, 34, 1, 1, true},
        Operation{"add_to_groups", AddUserToGroups, "bob", {"family"}, 31, 34, 1, 2, false},
        Operation{"remove_users", DelUsersFromGroup, "staff", {"bob"}, 35, 35, 2, 2, false},
        Operation{"remove_from_groups", DelUserFromGroups, "bob", {"staff"}, 35, 35, 2, 2, false}),
    [](const auto& operation) { return operation.param.name; });

TEST_P(MembershipStepsTest, InOrder) {
  EXPECT_EQ(run(), 0u);
  EXPECT_EQ(commands(), joined({backup_, group_, list_, at_end()}));
  EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
}

TEST_P(MembershipStepsTest, MirroredToTheSecondDisk) {
  mount_volume(2);
  EXPECT_EQ(run(), 0u);
  EXPECT_EQ(read("/harddisk/volume_2/conf/group"), read(kGroupFile));
  EXPECT_EQ(read("/harddisk/volume_2/conf/usrgrp.info"), read(kUserGroups));
}

/* The lock before the busy one stays. */
TEST_P(MembershipStepsTest, Busy) {
  write("/tmp/user.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(run(), GetParam().busy);
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck"}));
  EXPECT_EQ(commands(), Strings());
}

TEST_P(MembershipStepsTest, GroupFileCopyFails) {
  const Snapshot before = snapshot();
  fail_command("cp", 4 + GetParam().group_copies);
  EXPECT_EQ(run(), GetParam().failure);
  EXPECT_EQ(commands(),
            joined({backup_, replaced("/etc/group", GetParam().group_copies), restore_, at_end()}));
  EXPECT_EQ(changes(before), Strings({"+/harddisk/volume_1/conf/group.ttt",
                                      "+/harddisk/volume_1/conf/usrgrp.info.ttt"}));
}

TEST_P(MembershipStepsTest, ListCopyFails) {
  const Snapshot before = snapshot();
  fail_command("cp", 4 + GetParam().group_copies + GetParam().list_copies);
  EXPECT_EQ(run(), GetParam().failure);
  EXPECT_EQ(commands(),
            joined({backup_, group_, replaced("/etc/usrgrp.info", GetParam().list_copies), restore_,
                    at_end()}));
  EXPECT_EQ(changes(before), Strings({"+/harddisk/volume_1/conf/group.ttt",
                                      "+/harddisk/volume_1/conf/usrgrp.info.ttt"}));
}

TEST_P(MembershipStepsTest, FirstOfTwoCopiesMayFail) {
  if (GetParam().list_copies == 1) return;
  fail_command("cp", 4 + GetParam().group_copies + 1);
  EXPECT_EQ(run(), 0u);
}

TEST_P(MembershipStepsTest, GroupFileMissing) {
  ASSERT_EQ(rename(kGroupFile, "/harddisk/volume_1/conf/group.away"), 0);
  EXPECT_EQ(run(), GetParam().failure);
  EXPECT_EQ(commands(), joined({backup_, restore_, at_end()}));
  EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
}

TEST_P(MembershipStepsTest, Refusals) {
  const Operation& operation = GetParam();
  const char* const names[] = {"bob", nullptr};
  EXPECT_EQ(operation.function(nullptr, names, 1), 20u);
  EXPECT_EQ(operation.function("", names, 1), 20u);
  EXPECT_EQ(operation.function("staff", nullptr, 1), 20u);
  EXPECT_EQ(operation.function("staff", names, 0), 20u);
  EXPECT_EQ(operation.function("staff", names, 2), 20u) << "a name in the array is missing";
  EXPECT_EQ(commands(), Strings());
}

/* One of the list is a member: nothing happens, not even a lock. */
TEST_F(MembershipTest, MembersAreNotAddedAgain) {
  const Snapshot before = snapshot();
  EXPECT_EQ(call(AddUsersToGroup, "staff", {"carol", "bob"}), 54u);
  EXPECT_EQ(call(AddUserToGroups, "carol", {"staff", "family"}), 54u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(MembershipTest, AddUsersToSysGroupFailures) {
  const char* const users[] = {"bob"};
  fail_command("cp", 1);
  EXPECT_EQ(in_process([&] { return AddUsersToSysGroup("family", users, 1); }), 34u);
  EXPECT_EQ(commands(), replaced("/etc/group", 1));
  ASSERT_EQ(unlink(kGroupFile), 0);
  EXPECT_EQ(in_process([&] { return AddUsersToSysGroup("family", users, 1); }), 21u);
  ASSERT_EQ(rmdir("/harddisk/volume_1/conf/tmp"), 0);
  EXPECT_EQ(in_process([&] { return AddUsersToSysGroup("family", users, 1); }), 22u);
  EXPECT_EQ(AddUsersToSysGroup("", users, 1), 20u);
  EXPECT_EQ(AddUsersToSysGroup("family", users, 0), 20u);
}

/* ---- Queries ---- */

/* The result, and the names when it is 0. */
template <class Query>
std::pair<unsigned, Strings> ask(Query query, const char* name) {
  GroupUserInfo record{};
  (void)snprintf(record.name, sizeof record.name, "%s", name);
  const unsigned result = query(&record);
  Strings names(record.list, record.list + record.count);
  FreeGroupUserInfo(&record);
  return {result, names};
}
using Answer = std::pair<unsigned, Strings>;

TEST_F(MembershipTest, UsersOfAGroup) {
  write(kUserGroups,
        "staffs=x:1\nstaff= a:1,b:2:3,:4\r\nstaff=c:1\nnone=\r\nempty=   \nbad=a:1,,b:2\n"
        "worse=a\nlast=d:0");
  EXPECT_EQ(ask(GetGroupUserInfo, "staff"), Answer(0, {"a", "b", ""}));
  EXPECT_EQ(ask(GetGroupUserInfo, "last"), Answer(0, {"d"}));
  for (const char* name : {"none", "empty", "sta", "unknown"}) {
    EXPECT_EQ(ask(GetGroupUserInfo, name), Answer(0, {})) << name;
  }
  EXPECT_EQ(ask(GetGroupUserInfo, "bad"), Answer(24, {}));
  EXPECT_EQ(ask(GetGroupUserInfo, "worse"), Answer(24, {}));
}

TEST_F(MembershipTest, GroupsOfAUser) {
  write(kUserGroups, "\n\r\na=bob:1,bob:2\n=bob:1\nno key\nb=Bob:1,bobby:1\r\nc= bob:0");
  EXPECT_EQ(ask(GetUserGroupInfo, "bob"), Answer(0, {"a", "a", "c"}));
  EXPECT_EQ(ask(GetUserGroupInfo, "nobody"), Answer(0, {}));
  write(kUserGroups, "a=bob:1\nb=alice\nc=bob:1\n");
  EXPECT_EQ(ask(GetUserGroupInfo, "bob"), Answer(24, {}));
}

/* What stands behind the last name that is taken does not matter, malformed or not. */
TEST_F(MembershipTest, At255NamesTheListEnds) {
  std::string members = "staff=";
  std::string groups;
  for (int i = 0; i < 255; ++i) {
    members += "m" + std::to_string(i) + ":0,";
    groups += "g" + std::to_string(i) + "=bob:0\n";
  }
  write(kUserGroups, members + "malformed\n");
  Answer answer = ask(GetGroupUserInfo, "staff");
  EXPECT_EQ(answer.first, 0u);
  ASSERT_EQ(answer.second.size(), 255u);
  EXPECT_EQ(answer.second.back(), "m254");
  write(kUserGroups, groups + "g255=alice:0,bob:0,malformed\n");
  answer = ask(GetUserGroupInfo, "bob");
  EXPECT_EQ(answer.first, 0u);
  ASSERT_EQ(answer.second.size(), 255u);
  EXPECT_EQ(answer.second.back(), "g254");
}

TEST_F(MembershipTest, UserInGroup) {
  EXPECT_EQ(UserInGroup("bob", "staff"), 1);
  EXPECT_EQ(UserInGroup("Bob", "staff"), 0);
  EXPECT_EQ(UserInGroup("bob", "family"), 0);
  EXPECT_EQ(UserInGroup(nullptr, "staff"), 0);
  EXPECT_EQ(UserInGroup("bob", nullptr), 0);
  EXPECT_EQ(UserInGroup("bob", ""), 0);
  write(kUserGroups, "staff=bob:1,alice\n");
  EXPECT_EQ(UserInGroup("bob", "staff"), 0) << "malformed behind the user";
}

TEST_F(MembershipTest, QueryFailuresLeaveTheRecord) {
  char* list[1] = {};
  GroupUserInfo record{"staff", 7, list};
  write(kUserGroups, "staff=bob\n");
  EXPECT_EQ(GetGroupUserInfo(&record), 24u);
  EXPECT_EQ(GetUserGroupInfo(&record), 24u);
  ASSERT_EQ(unlink(kUserGroups), 0);
  EXPECT_EQ(GetGroupUserInfo(&record), 21u);
  EXPECT_EQ(GetUserGroupInfo(&record), 21u);
  EXPECT_EQ(record.count, 7);
  EXPECT_EQ(record.list, list);
  EXPECT_EQ(UserInGroup("bob", "staff"), 0);
  record.name[0] = '\0';
  EXPECT_EQ(GetGroupUserInfo(&record), 20u);
  EXPECT_EQ(GetUserGroupInfo(nullptr), 20u);
  FreeUserGroupInfo(nullptr);
}

}  // namespace
