// Listing users, looking them up and checking their passwords.
#include <cstring>
#include <filesystem>

#include "filesharing/users.h"
#include "tests/device_test.h"

namespace {

class UsersTest : public DeviceTest {
 protected:
  static UserInfo named(const char* name) {
    UserInfo user;
    std::memset(&user, 'x', sizeof user);  // what a caller left there
    (void)std::snprintf(user.name, sizeof user.name, "%s", name);
    return user;
  }

  static std::ptrdiff_t open_files() {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
  }
};

TEST_F(UsersTest, ListedByIdAndLengthOfTheNameInFileOrder) {
  write("/etc/passwd",
        "root:x:0:0::/:/bin/sh\n"
        "zoe:x:2500:501:Zoe::/dev/null\n"
        "\n\r\n"
        "a499:x:499:501:::\na500:x:500:501:::\na502:x:502:501:::\na503:x:503:501:::\n"
        "a1999:x:1999:501:::\na2000:x:2000:501:::\nguest:x:501:501:::\n"
        "none:x::501:::\nminus:x:-5:501:::\n"
        "exactly-twenty-chars:x:2001:501\n"
        "not-listed-21-letters:x\n"  // its length comes before its missing fields
        "last:x:2147483647:");
  UserNameItem* head = nullptr;
  const std::ptrdiff_t open_before = open_files();
  at_sync([&] { EXPECT_EQ(open_files(), open_before) << "closed before the disk is waited for"; });
  ASSERT_EQ(GetUserNameList(&head), 0u);
  Strings names;
  for (const UserNameItem* item = head; item != nullptr; item = item->next) {
    names.emplace_back(item->name);
  }
  FreeUserNameList(head);
  EXPECT_EQ(names,
            Strings({"zoe", "a500", "a502", "a2000", "guest", "exactly-twenty-chars", "last"}));
  EXPECT_EQ(commands(), Strings({"sync"}));
  EXPECT_EQ(GetNumOfUsers(), 7u);
  EXPECT_EQ(UserExist("zoe"), 1);
  for (const char* name : {"Zoe", "zo", "zoee", "root"}) EXPECT_EQ(UserExist(name), 0) << name;
}

TEST_F(UsersTest, MalformedAccountLineEndsTheListing) {
  UserNameItem* head = nullptr;
  UserItem* all = nullptr;
  const std::string admin = "admin:x:500:501:::\n";
  for (const auto& accounts :
       {admin + "bob\n", "bob:x:2001\n" + admin, admin + "21-letters-none-named\n",
        admin + '\0' + "b:x:2001:501:::\n",
        admin + "bob" + '\0' + "of-21-letters-at-last:x:7:501:::\n"}) {
    write("/etc/passwd", accounts);
    EXPECT_EQ(GetUserNameList(&head), 24u) << accounts;
    EXPECT_EQ(GetAllUser(&all), 24u) << accounts;
    EXPECT_EQ(GetNumOfUsers(), FSH_FAILED) << accounts;
    EXPECT_EQ(UserExist("admin"), 0) << accounts;
  }
}

TEST_F(UsersTest, LookUpFindsTheFirstEntryOfEveryoneAndCutsALongDescription) {
  std::string long_list = "everyone=";
  for (int i = 0; i < 3000; ++i) long_list += "member-no-" + std::to_string(1000 + i) + ":12,";
  const struct {
    std::string list;
    const char* name;
    unsigned result;
    bool found;
    unsigned quota;
  } cases[] = {
      {"everyone=   alice:5,bob:4294967295", "bob", 0, true, 4294967295u},
      {"everyone=bob:4294967296", "bob", 0, true, 4294967295u},
      {"everyone=bob:99999999999999999999", "bob", 0, true, 4294967295u},
      {"everyone=bob:-2", "bob", 0, true, 4294967294u},
      {"everyone=bob:1,bob:2,carol\n", "bob", 0, true, 1},  // not looked at any more
      {"everyone=bob:\r\n", "bob", 0, true, 0},
      {long_list + "bob:77\n", "bob", 0, true, 77},
      {"staff=bob:3\neveryone=alice:1\n", "bob", 0, false, 0},  // an account, but not listed
      {"everyone=ghost:9\n", "ghost", 33, true, 9},             // listed, but no account
      {"everyone=alice:1,\n", "bob", 33, false, 0},
      {"everyone=not-listed-21-letters:1,bob:1\n", "bob", 33, false, 0},
      {"everyone=exactly-twenty-chars:1,bob:1\n", "bob", 0, true, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.list.substr(0, 60) + c.name);
    write("/etc/usrgrp.info", c.list);
    UserInfo user = named(c.name);
    EXPECT_EQ(GetUserInfo(&user), c.result);
    EXPECT_STREQ(user.password, c.found ? "Qx7Rm2Lp9Tb4Vk" : "");
    EXPECT_EQ(user.quota, c.quota);
  }
  const std::string longest(48, 'd');
  write("/etc/usrgrp.info", "everyone=alice:1\n");
  write("/etc/passwd", "alice:x:2000:501:" + longest + "more::/dev/null\n");
  UserInfo alice = named("alice");
  EXPECT_EQ(GetUserInfo(&alice), 0u);
  EXPECT_EQ(alice.description, longest);
}

/* Each user's fields and groups; of a record that is full the number of groups. */
Strings seen(const UserItem* head) {
  Strings lines;
  for (const UserItem* item = head; item != nullptr; item = item->next) {
    EXPECT_STREQ(item->groups->name, item->user.name);
    std::string line = std::string(item->user.name) + " " + item->user.description + " " +
                       std::to_string(item->user.quota) + " " + std::to_string(item->user.uid);
    const int count = item->groups->count;
    if (count == 255) line += " 255 groups";
    for (int i = 0; i < count && count < 255; ++i) line += " " + std::string(item->groups->list[i]);
    lines.push_back(line);
  }
  return lines;
}

/* Everyone is looked up on their own: what is malformed counts for those who stand behind it. */
TEST_F(UsersTest, AllUsersWithRepeatedNamesAndMalformedEntries) {
  const std::string line = "z:x:2001:501:Zoe::/dev/null\n";
  const std::string two = "a:x:2000:501:Ann::/dev/null\n" + line;
  const std::string twenty_one(21, 'x');
  std::string full; /* 256 groups of z */
  for (int i = 0; i < 256; ++i) full += "g" + std::to_string(i) + "=z:1\n";
  const struct {
    std::string accounts;
    std::string lists;
    unsigned code;
    Strings users;
  } cases[] = {
      /* the first account, entry and list of a name */
      {two + "a:x:2005:501:Abe::/dev/null\n",
       "everyone=a:1,z:2,a:3\nt=a:1,a:1\nt=z:1\n",
       0,
       {"a Ann 1 2000 everyone everyone t t", "z Zoe 2 2001 everyone t",
        "a Ann 1 2000 everyone everyone t t"}},
      /* the list of everyone ends at a malformed entry, behind all users or before the last */
      {two,
       "everyone=a:1,z:2," + twenty_one + ":1\n",
       0,
       {"a Ann 1 2000 everyone", "z Zoe 2 2001 everyone"}},
      {two, "everyone=a:1," + twenty_one + ":1,z:2\n", 33, {}},
      {two, "t=a:1\n[x]\neveryone=a:1\n", 33, {}},
      /* the groups: whoever has more than a record holds does not get to the malformed one */
      {line, "everyone=y:1\nbad\n=a\nu=z:1,z\n", 24, {}},
      {line, "everyone=y:1\nbad\n=a\nu=z:1\n", 0, {"z Zoe 0 2001 u"}},
      {line, "everyone=y:1\n" + full + "u=z\n", 0, {"z Zoe 0 2001 255 groups"}},
      {line, "u=z\neveryone=y:1\n" + full, 24, {}},
      /* names that no look-up finds; the account files */
      {"+z:x:2001:501:::\n" + line, "everyone=z:1\n", 33, {}},
      {":x:2001:501:::\n" + line, "everyone=z:1\n", 20, {}},
      {"z\n" + two, "everyone=a:1\n", 24, {}},
  };
  for (const auto& c : cases) {
    write("/etc/passwd", c.accounts);
    write("/etc/usrgrp.info", c.lists);
    UserItem* head = nullptr;
    const std::ptrdiff_t open_before = open_files();
    EXPECT_EQ(GetAllUser(&head), c.code) << c.accounts << c.lists.substr(0, 80);
    EXPECT_EQ(seen(c.code == 0 ? head : nullptr), c.users) << c.accounts << c.lists.substr(0, 80);
    /* the stream stays open on success */
    EXPECT_EQ(open_files(), open_before + (c.code == 0 ? 1 : 0));
    if (c.code == 0) FreeUserList(head);
  }
}

TEST_F(UsersTest, PasswordIsCheckedInTwoHalves) {
  write("/etc/passwd", read("/etc/passwd") +
                           "salty:ab9oe0cBWCtKU:2003:501:::/dev/null\n"
                           "homely:JqEAm.QJjPY0A:2004:501::/home/user4:/dev/null\n"
                           "elsewhere:JqEAm.QJjPY0A:2005:501::/home/u:/dev/null\n"
                           "empty::2007:501:::\n");
  const std::tuple<const char*, const char*, int> cases[] = {
      {"alice", "sesame42more", 1},  // there is no second hash that could tell
      {"alice", "sesame4", 0},
      {"bob", "correcthorsebat12345", 1},  // 15 characters count
      {"bob", "correcthorseba", 0},
      {"bob", "Xorrecthorsebattery", 0},
      {"guest", "", 1},
      {"salty", "sesame42", 1},
      {"homely", "sesame42", 1},
      {"elsewhere", "sesame42", 0},  // a field 6 that is no hash matches nothing
      {"empty", "", 0},
      {"ghost", "", 0},
  };
  for (const auto& [name, password, correct] : cases) {
    EXPECT_EQ(IsUserPassCorrect(name, password), correct) << name;
  }
}

}  // namespace
