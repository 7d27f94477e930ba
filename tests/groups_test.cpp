/* Groups: both files as a whole, what happens in which order, what is left after a failure. */
#include "filesharing/groups.h"

#include <cstdlib>
#include <cstring>

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

/* The registry of the shares with what stands there for the group "family". */
std::string shares_with(const std::string& family) {
  return "DISK 1=0:1:Public folder:/public/:administrators:7,everyone:7\n"
         "Music=0:1:Songs of the family:/Music/:administrators:7" +
         family + ",everyone:5\nProjects=0:1::/Projects/:administrators:7,staff:7\n";
}

Strings strings(char** list, int count) {
  return {list, list + count};
}

class GroupsTest : public DeviceTest {};

/* ---- Operations ---- */

TEST_F(GroupsTest, AddedGroupHasBothLines) {
  EXPECT_EQ(AddGroup("team"), 0u);
  EXPECT_EQ(read(kGroupFile), kFactoryGroups + "team:x:2002:\n");
  EXPECT_EQ(read(kUserGroups), kFactoryKeys + "team=\n");
  EXPECT_EQ(
      commands(),
      joined({backed_up("group"), backed_up("usrgrp.info"), replaced("/etc/group", 1), {"sync"}}));
}

/* The locks that others hold are neither heeded nor taken away. */
TEST_F(GroupsTest, DeletedGroupIsGoneFromFilesAndSharesWithoutALock) {
  mount_volume(2);
  write("/tmp/grp.lck", "");
  write("/tmp/user.lck", "");
  EXPECT_EQ(read("/etc/share.info"), shares_with(",family:7"));
  EXPECT_EQ(DelGroup("family"), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups + "staff:x:2000:alice,bob\n");
  EXPECT_EQ(read(kUserGroups), kReservedKeys + "staff=alice:500,bob:1000\n");
  EXPECT_EQ(read("/etc/share.info"), shares_with(""));
  EXPECT_EQ(read("/harddisk/volume_2/conf/group"), read(kGroupFile)) << "mirrored";
  EXPECT_EQ(DelGroup("nobody-knows"), 0u);
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
  EXPECT_EQ(read(kGroupFile) + read(kUserGroups), kFactoryGroups + kFactoryKeys);
}

TEST_F(GroupsTest, DeletingAllEmptiesTheListAndSparesReservedGroupsInTheSystemFile) {
  EXPECT_EQ(DelAllGroup(), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups);
  EXPECT_EQ(read(kUserGroups), "");
  EXPECT_EQ(read("/etc/share.info"), shares_with(",family:7"));
  EXPECT_EQ(commands(), joined({backed_up("group"),
                                backed_up("usrgrp.info"),
                                backed_up("smb.conf"),
                                replaced("/etc/group", 1),
                                {"sync"},
                                replaced("/etc/usrgrp.info", 1),
                                {"sync"}}));
}

TEST_F(GroupsTest, RenamedGroupKeepsGidMembersAndRights) {
  write(kUserGroups, "everyone=a:0\nfamily=  alice:500,odd\r\n\nstaff=\n");
  EXPECT_EQ(RenameGroup("family", "clan"), 0u);
  EXPECT_EQ(read(kGroupFile), kSystemGroups + "staff:x:2000:alice,bob\nclan:x:2001:alice,carol\n");
  EXPECT_EQ(read(kUserGroups), "everyone=a:0\nstaff=\nclan=  alice:500,odd\n");
  EXPECT_EQ(read("/etc/share.info"), shares_with(",clan:7"));
}

/* What the files hold can fail a change; then both are as before and the locks are gone. */
TEST_F(GroupsTest, ChangesThatTheFilesForbidAreUndone) {
  const struct {
    unsigned (*call)();
    unsigned result;
    const char* path;
    const char* content;
  } cases[] = {
      {[] { return RenameGroup("staff", "Staff"); }, 39, "/etc/none", ""},
      {[] { return RenameGroup("staff", "staff"); }, 43, "/etc/none", ""},
      {[] { return RenameGroup("staff", "team"); }, 39, "/etc/usrgrp.info", "everyone=\n"},
      {[] { return RenameGroup("staff", "team"); }, 24, "/etc/win_share.info", "Music=x\n"},
      {[] { return DelGroup("staff"); }, 24, "/etc/win_share.info", "Music=x\n"},
  };
  for (const auto& [call, result, path, content] : cases) {
    SetUp();
    write(path, content);
    const Snapshot before = snapshot();
    EXPECT_EQ(call(), result);
    for (const std::string& change : changes(before)) EXPECT_TRUE(change.ends_with(".ttt"));
  }
}

/* ---- Queries ---- */

TEST_F(GroupsTest, ListedAreTheGroupsOfUsers) {
  const std::string twenty = "twenty-characters-xx";
  write("/etc/group", "root:x:0:\n\n\r\na:x:499:\nb:x:500:\nc:x:501:\nd:x:502:\ne:x:1999:\n" +
                          twenty + ":x:2000:\n" + twenty + "y:x:2001:\nf:x:70000:u\ng:x::");
  GroupNameItem* head = nullptr;
  EXPECT_EQ(GetGrpNameList(&head), 0u);
  Strings names;
  for (const GroupNameItem* item = head; item; item = item->next) names.push_back(item->name);
  FreeGrpNameList(head);
  EXPECT_EQ(names, Strings({"b", "c", twenty, "f"}));
  EXPECT_EQ(GetNumOfGrps(), 4u);
}

TEST_F(GroupsTest, LookingUpOneGroup) {
  write("/etc/group", "staff\nstaff:x\nstaff:x:2007\nstaff:x:2008:\nbig:x:99999999999:\n");
  const std::pair<const char*, int> gids[] = {
      {"staff", 2007}, {"big", 2147483647}, {"Staff", -5}, {"", -5}};
  for (const auto& [name, gid] : gids) EXPECT_EQ(GetGroupId(name), gid);
  EXPECT_EQ(GroupExist("STAFF"), 1);
}

/* Each group with its gid, its members and its shares with their rights; or the code. */
std::string all_groups() {
  GroupItem* head = nullptr;
  if (const unsigned code = GetAllGroup(&head)) return std::to_string(code);
  std::string all;
  for (const GroupItem* group = head; group; group = group->next) {
    all += group->name + (' ' + std::to_string(group->gid)) + group->users->name;
    for (const auto& user : strings(group->users->list, group->users->count)) all += ' ' + user;
    for (int i = 0; group->shares != nullptr && i < group->shares->count; ++i) {
      all += std::string(" ") + group->shares->shares[i] + std::to_string(group->shares->rights[i]);
    }
    all += "; ";
  }
  FreeGrpList(head);
  return all;
}

/* Every group is looked up on its own, in every file: the first line of its name counts. */
TEST_F(GroupsTest, AllGroupsWithTheirMembersAndShares) {
  const std::string good = "a=0:1::/a/:staff:7,staff:5\nb=0:1::/b/:x:5,staff:5\n";
  const struct {
    const char* lists;
    const char* groups;
    std::string shares;
    std::string removable;
    const char* expected;
  } cases[] = {
      {"\nfamily=alice:500,carol:0\r\n\r\nlost=\nstaff=bob:7", "staff:x:2000:\nfamily:x:2001:\n",
       good, "", "family 2001family alice carol; lost -5lost; staff 2000staff bob a7 b5; "},
      {"staff=b:1\nstaff=c:1,d\n", "staff:x\nstaff:x:7\nstaff:x:8\n", good, "",
       "staff 7staff b a7 b5; staff 7staff b a7 b5; "},
      {"a_name_of_24_characters_=a:1\na_name_of_24_characters=b:1\n",
       "a_name_of_24_characters_:x:5:\n", good, "",
       "a_name_of_24_characters 5a_name_of_24_characters b; "
       "a_name_of_24_characters -5a_name_of_24_characters b; "},
      /* a malformed share: the first file is forgotten, with the second there are no shares */
      {"staff=\n", "", "bad=0\n" + good, "c=0:3::/c/:staff:7\n", "staff -5staff c7; "},
      {"staff=\n", "", good, "c=0:3::/c/:staff:7\nbad=0\n", "staff -5staff; "},
      /* a malformed list */
      {"staff=\n=a:0\n", "", good, "", "24"},
      {"staff=\nfamily=", "", good, "", "24"},
      {"family=a:0,b\nstaff=\n", "", good, "", "24"},
  };
  for (const auto& c : cases) {
    write(kUserGroups, c.lists);
    write(kGroupFile, c.groups);
    write("/etc/share.info", c.shares);
    write("/etc/win_share.info", c.removable);
    /* The list is never freed: a process of its own makes it. */
    EXPECT_EQ(in_process([&] {
                EXPECT_EQ(all_groups(), c.expected) << c.lists;
                return 0U;
              }),
              0u);
  }
}

TEST_F(GroupsTest, MalformedLineFailsTheListing) {
  GroupNameItem* names = nullptr;
  write(kGroupFile, "a:x:2000:\nb:x:0\nc:x:2001:\n");
  EXPECT_EQ(GetGrpNameList(&names), 24u);
  EXPECT_EQ(GetNumOfGrps(), 4294967294u);
}

TEST_F(GroupsTest, SharesOfAGroup) {
  GroupItem group{};
  (void)strcpy(group.name, "nobody");
  EXPECT_EQ(GetGrpShares(&group), nullptr) << "a group without shares";
  (void)strcpy(group.name, "everyone");
  GroupShareInfo* shares = GetGrpShares(&group);
  ASSERT_NE(shares, nullptr);
  EXPECT_EQ(strings(shares->shares, shares->count), Strings({"DISK 1", "Music"}));
  FreeGrpShareInfo(shares);
  free(shares);
  write("/etc/win_share.info", "FLASH=x\n");
  EXPECT_EQ(in_process([&] { return GetGrpShares(&group) ? 1u : 0u; }), 0u);
}

TEST_F(GroupsTest, FreedUsersLeaveTheirArray) {
  auto* names = static_cast<char**>(calloc(1, sizeof(char*)));
  names[0] = strdup("a");
  GroupUserInfo users{"staff", 1, names};
  FreeGrpUsers(&users);
  free(names); /* a second time would end the program */
}

}  // namespace
