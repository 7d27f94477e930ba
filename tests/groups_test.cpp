/* Groups: both files as a whole, what happens in which order, what is left after a failure. */
#include "filesharing/groups.h"

#include <cstdlib>
#include <cstring>
#include <functional>

#include "tests/account_commands.h"

namespace {

const char kGroupFile[] = "/harddisk/volume_1/conf/group";
const char kUserGroups[] = "/harddisk/volume_1/conf/usrgrp.info";

const std::string kSystemGroups =
    "root:x:0:\ndaemon:x:1:\nbin:x:2:\nnobody:x:99:\nsshd:x:100:\n"
    "administrators:x:500:admin\neveryone:x:501:admin,guest,alice,bob,carol\n";
const std::string kFactoryGroups =
    kSystemGroups + "staff:x:2000:alice,bob\nfamily:x:2001:alice,carol\n";
const std::string kReservedKeys =
    "everyone=admin:0,guest:0,alice:500,bob:1000,carol:0\nadministrators=admin:0\n";
const std::string kFactoryKeys =
    kReservedKeys + "staff=alice:500,bob:1000\nfamily=alice:500,carol:0\n";

Strings group_names() {
  GroupNameItem* head = nullptr;
  EXPECT_EQ(GetGrpNameList(&head), 0u);
  Strings names;
  for (const GroupNameItem* item = head; item; item = item->next) names.push_back(item->name);
  FreeGrpNameList(head);
  return names;
}

class GroupsTest : public DeviceTest {};

/* ---- Operations ---- */

TEST_F(GroupsTest, AddedGroupHasBothLines) {
  EXPECT_EQ(AddGroup("team"), 0u);
  EXPECT_EQ(read(kGroupFile), kFactoryGroups + "team:x:2002:\n");
  EXPECT_EQ(read(kUserGroups), kFactoryKeys + "team=\n");
  EXPECT_EQ(commands(), joined({backed_up("group"), backed_up("usrgrp.info"),
                                replaced("/etc/group", 1), Strings{"sync"}}));
  EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
}

TEST_F(GroupsTest, ChangesReachTheSecondDisk) {
  mount_volume(2);
  EXPECT_EQ(AddGroup("team"), 0u);
  EXPECT_EQ(read("/harddisk/volume_2/conf/group"), kFactoryGroups + "team:x:2002:\n");
  EXPECT_EQ(RenameGroup("team", "crew"), 0u);
  EXPECT_EQ(read("/harddisk/volume_2/conf/usrgrp.info"), kFactoryKeys + "crew=\n");
  EXPECT_EQ(DelGroup("crew"), 0u);
  EXPECT_EQ(read("/harddisk/volume_2/conf/group"), kFactoryGroups);
  EXPECT_EQ(DelAllGroup(), 0u);
  EXPECT_EQ(read("/harddisk/volume_2/conf/usrgrp.info"), "");
}

/* The registry of the shares with what stands there for the group "family". */
std::string shares_with(const std::string& family) {
  return "DISK 1=0:1:Public folder:/public/:administrators:7,everyone:7\n"
         "Music=0:1:Songs of the family:/Music/:administrators:7" +
         family + ",everyone:5\nProjects=0:1::/Projects/:administrators:7,staff:7\n";
}

TEST_F(GroupsTest, DeletedGroupIsGoneFromFilesAndShares) {
  EXPECT_EQ(read("/etc/share.info"), shares_with(",family:7"));
  EXPECT_EQ(DelGroup("family"), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups + "staff:x:2000:alice,bob\n");
  EXPECT_EQ(read(kUserGroups), kReservedKeys + "staff=alice:500,bob:1000\n");
  EXPECT_EQ(read("/etc/share.info"), shares_with(""));
  EXPECT_EQ(DelGroup("nobody-knows"), 0u);
}

TEST_F(GroupsTest, RenamedGroupKeepsItsRights) {
  EXPECT_EQ(RenameGroup("family", "clan"), 0u);
  EXPECT_EQ(read("/etc/share.info"), shares_with(",clan:7"));
  EXPECT_EQ(read(kUserGroups),
            kReservedKeys + "staff=alice:500,bob:1000\nclan=alice:500,carol:0\n");
}

TEST_F(GroupsTest, DeletingTakesNoGroupLock) {
  write("/tmp/grp.lck", "");
  write("/tmp/user.lck", "");
  EXPECT_EQ(DelGroup("family"), 0u);
  EXPECT_TRUE(exists("/tmp/grp.lck") && exists("/tmp/user.lck"));
}

/* The backup is made before the name is looked at. */
TEST_F(GroupsTest, ReservedGroupsStay) {
  for (const char* name : {"everyone", "administrators"}) {
    clear_commands();
    EXPECT_EQ(DelGroup(name), 42u);
    EXPECT_EQ(commands(),
              joined({backed_up("group"), backed_up("usrgrp.info"), backed_up("smb.conf")}));
  }
  EXPECT_EQ(read(kGroupFile), kFactoryGroups);
  EXPECT_EQ(read(kUserGroups), kFactoryKeys);
}

TEST_F(GroupsTest, DeletingAllEmptiesTheListAndSparesReservedGroupsInTheSystemFile) {
  const std::string shares = read("/etc/share.info");
  EXPECT_EQ(DelAllGroup(), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups);
  EXPECT_EQ(read(kUserGroups), "");
  EXPECT_EQ(read("/etc/share.info"), shares);
  EXPECT_EQ(commands(), joined({backed_up("group"), backed_up("usrgrp.info"), backed_up("smb.conf"),
                                replaced("/etc/group", 1), Strings{"sync"},
                                replaced("/etc/usrgrp.info", 1), Strings{"sync"}}));
  EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck") || exists("/tmp/smb.lck"));
}

TEST_F(GroupsTest, RenamedGroupKeepsGidAndMembers) {
  write(kUserGroups, "everyone=a:0\nstaff=  alice:500,odd\r\n\nfamily=\n");
  EXPECT_EQ(RenameGroup("staff", "team"), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups + "team:x:2000:alice,bob\nfamily:x:2001:alice,carol\n");
  EXPECT_EQ(read(kUserGroups), "everyone=a:0\nfamily=\nteam=  alice:500,odd\n");
  EXPECT_FALSE(exists("/tmp/grp.lck") || exists("/tmp/user.lck"));
}

TEST_F(GroupsTest, RefusedBeforeAnyLock) {
  const Snapshot before = snapshot();
  EXPECT_EQ(AddGroup(nullptr), 20u);
  EXPECT_EQ(AddGroup(""), 20u);
  EXPECT_EQ(DelGroup(nullptr), 20u);
  EXPECT_EQ(DelGroup(""), 20u);
  EXPECT_EQ(RenameGroup("staff", nullptr), 20u);
  EXPECT_EQ(RenameGroup("staff", ""), 20u);
  EXPECT_EQ(RenameGroup(nullptr, "team"), 20u);
  EXPECT_EQ(RenameGroup("staff", "FAMILY"), 39u);
  EXPECT_EQ(RenameGroup("staff", "Staff"), 39u) << "the test of the new name ignores case";
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

/* A lock that was taken before the busy one stays. */
TEST_F(GroupsTest, BusyLockEndsTheOperationAtOnce) {
  struct {
    std::function<unsigned()> call;
    unsigned busy;
    const char* lock;
    Strings left;
  } const cases[] = {
      {[] { return AddGroup("team"); }, 37, "/tmp/user.lck", {"+/tmp/grp.lck"}},
      {[] { return RenameGroup("staff", "team"); }, 39, "/tmp/grp.lck", {}},
      {DelAllGroup, 38, "/tmp/smb.lck", {"+/tmp/grp.lck", "+/tmp/user.lck"}},
  };
  for (const auto& operation : cases) {
    write(operation.lock, "");
    const Snapshot before = snapshot();
    EXPECT_EQ(operation.call(), operation.busy);
    EXPECT_EQ(changes(before), operation.left);
    EXPECT_EQ(commands(), Strings());
    EXPECT_EQ(system("rm /tmp/*.lck"), 0);
    clear_commands();
  }
}

/* What a step leaves half done is undone, and the locks are gone. */
struct FailingStep {
  const char* name;
  std::function<unsigned()> call;
  unsigned result;
  int failing_copy;    /* the number of the copy that fails; 0 for none */
  const char* prepare; /* a command that makes the step fail */
  bool restores_smb;
};

void PrintTo(const FailingStep& step, std::ostream* out) {
  *out << step.name;
}

class FailingStepTest : public GroupsTest, public testing::WithParamInterface<FailingStep> {};

TEST_P(FailingStepTest, IsUndone) {
  ASSERT_EQ(system(GetParam().prepare), 0);
  if (GetParam().failing_copy > 0) fail_command("cp", GetParam().failing_copy);
  const Snapshot before = snapshot();
  EXPECT_EQ(GetParam().call(), GetParam().result);
  Strings left = changes(before);
  std::erase_if(left, [](const std::string& path) { return path.ends_with(".ttt"); });
  EXPECT_EQ(left, Strings());
  const Strings restores = joined({restored("group"), restored("usrgrp.info"),
                                   GetParam().restores_smb ? restored("smb.conf") : Strings()});
  const Strings ran = commands();
  ASSERT_GE(ran.size(), restores.size());
  EXPECT_EQ(Strings(ran.end() - static_cast<std::ptrdiff_t>(restores.size()), ran.end()), restores);
}

unsigned add_team() {
  return AddGroup("team");
}
unsigned delete_staff() {
  return DelGroup("staff");
}
unsigned rename_staff() {
  return RenameGroup("staff", "team");
}

INSTANTIATE_TEST_SUITE_P(
    Groups, FailingStepTest,
    testing::Values(FailingStep{"add_exists", [] { return AddGroup("staff"); }, 43, 0, "", false},
                    FailingStep{"add_system_file_copy", add_team, 37, 5, "", false},
                    FailingStep{"add_list_not_writable", add_team, 4294967295u, 0,
                                "rm /etc/usrgrp.info; mkdir /etc/usrgrp.info", false},
                    FailingStep{"delete_system_file_copy", delete_staff, 38, 7, "", true},
                    FailingStep{"delete_list_second_copy", delete_staff, 4294967292u, 9, "", true},
                    FailingStep{"delete_shares_busy", delete_staff, 52, 0, "touch /tmp/share.lck",
                                true},
                    FailingStep{"delete_shares_malformed", delete_staff, 24, 0,
                                "echo Music=x >/etc/win_share.info", true},
                    FailingStep{"delete_all_system_file_copy", DelAllGroup, 38, 7, "", true},
                    FailingStep{"delete_all_list_copy", DelAllGroup, 38, 8, "", true},
                    FailingStep{"rename_to_itself", [] { return RenameGroup("staff", "staff"); },
                                43, 0, "", false},
                    FailingStep{"rename_system_file_copy", rename_staff, 39, 5, "", false},
                    FailingStep{"rename_not_in_list", rename_staff, 39, 0,
                                "echo everyone= > /etc/usrgrp.info", false},
                    FailingStep{"rename_list_second_copy", rename_staff, 4294967292u, 7, "", false},
                    FailingStep{"rename_shares_malformed", rename_staff, 24, 0,
                                "echo Music=x >/etc/win_share.info", false}),
    [](const auto& step) { return step.param.name; });

TEST_F(GroupsTest, RenameWithoutTheListRestoresNothingAndStaysLocked) {
  ASSERT_EQ(unlink(kUserGroups), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(RenameGroup("staff", "team"), 21u);
  EXPECT_EQ(changes(before),
            Strings({"~/harddisk/volume_1/conf/group", "+/harddisk/volume_1/conf/group.ttt",
                     "+/tmp/grp.lck", "+/tmp/user.lck"}));
  EXPECT_EQ(read(kGroupFile), kSystemGroups + "team:x:2000:alice,bob\nfamily:x:2001:alice,carol\n");
}

/* ---- Queries ---- */

TEST_F(GroupsTest, ListedAreTheGroupsOfUsers) {
  const std::string twenty = "twenty-characters-xx";
  write("/etc/group", "root:x:0:\n\n\r\na:x:499:\nb:x:500:\nc:x:501:\nd:x:502:\ne:x:1999:\n" +
                          twenty + ":x:2000:\n" + twenty + "y:x:2001:\nf:x:70000:u\ng:x::");
  EXPECT_EQ(group_names(), Strings({"b", "c", twenty, "f"}));
  EXPECT_EQ(GetNumOfGrps(), 4u);
}

TEST_F(GroupsTest, ListingFailures) {
  GroupNameItem* names = nullptr;
  EXPECT_EQ(GetGrpNameList(nullptr), 20u);
  write("/etc/group", "a:x:2000:\nb:x:0\nc:x:2001:\n");
  EXPECT_EQ(GetGrpNameList(&names), 24u);
  EXPECT_EQ(GetNumOfGrps(), 4294967294u);
  ASSERT_EQ(unlink(kGroupFile), 0);
  EXPECT_EQ(GetGrpNameList(&names), 21u);
  EXPECT_EQ(GetGroupId("staff"), -5);
  EXPECT_EQ(GroupExist("staff"), 0);
}

TEST_F(GroupsTest, LookingUpOneGroup) {
  write("/etc/group", "staff\nstaff:x\nstaff:x:2007\nstaff:x:2008:\nbig:x:99999999999:\n");
  EXPECT_EQ(GetGroupId("staff"), 2007);
  EXPECT_EQ(GetGroupId("big"), 2147483647);
  EXPECT_EQ(GetGroupId("Staff"), -5);
  EXPECT_EQ(GroupExist("STAFF"), 1);
  EXPECT_EQ(GetGroupId(""), -5);
  EXPECT_EQ(GetGroupId(nullptr), -5);
  EXPECT_EQ(GroupExist(nullptr), 0);
}

/* The list is never freed: a process of its own makes it. */
TEST_F(GroupsTest, AllGroupsWithTheirMembers) {
  write(kUserGroups, "\nfamily=alice:500,carol:0\r\n\r\nlost=\nstaff=bob:7");
  EXPECT_EQ(in_process([] {
              GroupItem* group = nullptr;
              EXPECT_EQ(GetAllGroup(&group), 0u);
              const struct {
                const char* name;
                int gid;
                Strings users;
              } expected[] = {
                  {"family", 2001, {"alice", "carol"}}, {"lost", -5, {}}, {"staff", 2000, {"bob"}}};
              for (const auto& is : expected) {
                if (!group) return 1u;
                EXPECT_STREQ(group->name, is.name);
                EXPECT_EQ(group->gid, is.gid);
                EXPECT_STREQ(group->users->name, is.name);
                EXPECT_EQ(Strings(group->users->list, group->users->list + group->users->count),
                          is.users);
                group = group->next;
              }
              FreeGrpList(group);
              return group ? 2u : 0u;
            }),
            0u);
}

TEST_F(GroupsTest, SharesOfAGroup) {
  GroupItem group{};
  EXPECT_EQ(GetGrpShares(nullptr), nullptr);
  EXPECT_EQ(GetGrpShares(&group), nullptr);
  (void)strcpy(group.name, "nobody");
  EXPECT_EQ(GetGrpShares(&group), nullptr) << "a group without shares";
  (void)strcpy(group.name, "everyone");
  GroupShareInfo* shares = GetGrpShares(&group);
  ASSERT_NE(shares, nullptr);
  EXPECT_EQ(Strings(shares->shares, shares->shares + shares->count), Strings({"DISK 1", "Music"}));
  EXPECT_EQ(shares->rights[0], 7);
  EXPECT_EQ(shares->rights[1], 5);
  FreeGrpShareInfo(shares);
  free(shares);
  EXPECT_EQ(in_process([] {
              write("/etc/win_share.info", "FLASH=x\n");
              GroupItem unlucky{"everyone", 0, nullptr, nullptr, nullptr};
              return GetGrpShares(&unlucky) ? 1u : 0u;
            }),
            0u);
}

TEST_F(GroupsTest, AllGroupsFailAsAWhole) {
  GroupItem* head = nullptr;
  EXPECT_EQ(GetAllGroup(nullptr), 20u);
  for (const char* lines :
       {"staff=\n=a:0\n", "staff=\nfamily\n", "staff=\nfamily=", "staff=\nfamily=a:0,b\n"}) {
    write(kUserGroups, lines);
    head = reinterpret_cast<GroupItem*>(1);
    EXPECT_EQ(in_process([&] { return GetAllGroup(&head) + (head ? 100 : 0); }), 24u) << lines;
  }
  ASSERT_EQ(unlink(kUserGroups), 0);
  EXPECT_EQ(GetAllGroup(&head), 21u);
}

TEST_F(GroupsTest, FreeFunctionsFreeWhatTheyOwnAndNoMore) {
  auto* strings = static_cast<char**>(calloc(2, sizeof(char*)));
  strings[0] = strdup("a");
  strings[1] = strdup("b");
  GroupUserInfo users{"staff", 2, strings};
  FreeGrpUsers(&users);
  strings[0] = strdup("c");
  strings[1] = strdup("d");
  GroupShareInfo shares{"staff", 2, strings, {}};
  FreeGrpShareInfo(&shares);
  ShareGroupInfo groups{"Music", static_cast<ShareGroup*>(calloc(1, sizeof(ShareGroup)))};
  groups.groups->next = static_cast<ShareGroup*>(calloc(1, sizeof(ShareGroup)));
  FreeShareGrpInfo(&groups);
  GroupUserInfo no_users{};
  GroupShareInfo no_shares{};
  ShareGroupInfo no_groups{};
  FreeGrpUsers(&no_users);
  FreeGrpShareInfo(&no_shares);
  FreeShareGrpInfo(&no_groups);
  FreeGrpUsers(nullptr);
  FreeGrpShareInfo(nullptr);
  FreeShareGrpInfo(nullptr);
}

}  // namespace
