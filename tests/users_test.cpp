// Listing users, looking them up and checking their passwords.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "filesharing/users.h"
#include "tests/device_test.h"

namespace {

class UsersTest : public DeviceTest {
 protected:
  static Strings listed() {
    UserNameItem* head = nullptr;
    EXPECT_EQ(GetUserNameList(&head), 0u);
    Strings names;
    for (const UserNameItem* item = head; item != nullptr; item = item->next) {
      names.emplace_back(item->name);
    }
    FreeUserNameList(head);
    return names;
  }

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
        "a1000:x:1000:501:::\na1999:x:1999:501:::\na2000:x:2000:501:::\n"
        "guest:x:501:501:::\n"
        "none:x::501:::\nminus:x:-5:501:::\n"
        "exactly-twenty-chars:x:2001:501\n"
        "not-listed-21-letters:x:2002:501\n"
        "not-listed-21-letters:x\n"  // its length comes before its missing fields
        "last:x:2147483647:");
  EXPECT_EQ(listed(),
            Strings({"zoe", "a500", "a502", "a2000", "guest", "exactly-twenty-chars", "last"}));
  EXPECT_EQ(commands(), Strings({"sync"}));
}

TEST_F(UsersTest, MalformedAccountLineEndsTheListing) {
  for (const char* line :
       {"bob\n", "bob:x\n", "bob:x:2001\n", "bob:x:2001", "not-listed-21-letters\n"}) {
    write("/etc/passwd", std::string("admin:x:500:501:::\n") + line);
    EXPECT_EQ(in_process([] {
                UserNameItem* head = nullptr;
                return GetUserNameList(&head);
              }),
              24u)
        << line;
    EXPECT_EQ(GetNumOfUsers(), FSH_FAILED) << line;
    EXPECT_EQ(UserExist("admin"), 0) << line;
  }
  ASSERT_EQ(unlink("/etc/passwd"), 0);
  UserNameItem* head = nullptr;
  EXPECT_EQ(GetUserNameList(&head), 21u);
  EXPECT_EQ(GetUserNameList(nullptr), 20u);
}

TEST_F(UsersTest, CountedAndFoundInTheirLetterCase) {
  EXPECT_EQ(GetNumOfUsers(), 5u);
  EXPECT_EQ(UserExist("bob"), 1);
  for (const char* name : {"Bob", "bo", "bobb", "root", "", "nobody"}) {
    EXPECT_EQ(UserExist(name), 0) << name;
  }
  EXPECT_EQ(UserExist(nullptr), 0);
  write("/etc/passwd", "root:x:0:0::/:/bin/sh\nnobody:*:99:99:::\n");
  EXPECT_EQ(GetNumOfUsers(), 0u);
}

TEST_F(UsersTest, LookUpFindsTheFirstEntryOfEveryone) {
  struct Case {
    const char* list;
    const char* name;
    unsigned result;
    const char* password;
    unsigned quota;
  };
  const char* kPlaceholder = "Qx7Rm2Lp9Tb4Vk";
  const Case cases[] = {
      {"everyone=alice:500,bob:1000\n", "bob", 0, kPlaceholder, 1000},
      {"everyone=alice:500,bob:1000", "bob", 0, kPlaceholder, 1000},
      {"everyone=bob:7\r\n", "bob", 0, kPlaceholder, 7},
      {"everyone=   alice:5,bob:4294967295\n", "alice", 0, kPlaceholder, 5},
      {"everyone=   alice:5,bob:4294967295\n", "bob", 0, kPlaceholder, 4294967295u},
      {"everyone=bob:1,bob:2\n", "bob", 0, kPlaceholder, 1},
      {"everyone=bob:\n", "bob", 0, kPlaceholder, 0},
      {"staff=bob:3\neveryone=alice:1\n", "bob", 0, "", 0},  // an account, but not of the list
      {"everyone=alice:1\n", "root", 0, "", 0},
      {"everyone=bob:1,carol\n", "bob", 0, kPlaceholder, 1},  // not looked at any more
      {"everyone=carol,bob:1\n", "bob", 33, "", 0},
      {"everyone=alice:1,,bob:1\n", "bob", 33, "", 0},
      {"everyone=alice:1,\n", "bob", 33, "", 0},
      {"everyone=not-listed-21-letters:1,bob:1\n", "bob", 33, "", 0},
      {"everyone=exactly-twenty-chars:1,bob:1\n", "bob", 0, kPlaceholder, 1},
      {"everyone=alice:1\n", "Alice", 33, "", 0},
      {"everyone=ghost:9\n", "ghost", 33, kPlaceholder, 9},  // of the list, but no account
      {"everyone=\n", "bob", 33, "", 0},
      {"everyone=  \n", "bob", 33, "", 0},
      {"", "bob", 33, "", 0},
      {"[users]\neveryone=bob:1\n", "bob", 33, "", 0},
  };
  for (const Case& c : cases) {
    write("/etc/usrgrp.info", c.list);
    UserInfo user = named(c.name);
    EXPECT_EQ(GetUserInfo(&user), c.result) << c.list << c.name;
    EXPECT_STREQ(user.password, c.password) << c.list << c.name;
    EXPECT_EQ(user.quota, c.quota) << c.list << c.name;
  }
}

TEST_F(UsersTest, LookUpTakesDescriptionAndIdFromTheAccount) {
  UserInfo alice = named("alice");
  EXPECT_EQ(GetUserInfo(&alice), 0u);
  EXPECT_STREQ(alice.name, "alice");
  EXPECT_STREQ(alice.description, "Alice Carter");
  EXPECT_EQ(alice.uid, 2000);
  EXPECT_EQ(alice.quota, 500u);

  const std::string longest(48, 'd');
  write("/etc/passwd", "alice:x:2000:501:" + longest + "more::/dev/null\n");
  EXPECT_EQ(GetUserInfo(&alice), 0u);
  EXPECT_EQ(alice.description, longest);

  UserInfo unnamed{};
  EXPECT_EQ(GetUserInfo(&unnamed), 20u);
  EXPECT_EQ(GetUserInfo(nullptr), 20u);
  ASSERT_EQ(unlink("/etc/usrgrp.info"), 0);
  EXPECT_EQ(GetUserInfo(&alice), 21u);
}

TEST_F(UsersTest, ListOfEveryoneMayBeOfAnyLength) {
  for (const int users : {5, 6, 7, 300, 3000}) {  // about the length 128, and far behind it
    std::string list = "everyone=";
    for (int i = 0; i < users; ++i) list += "member-no-" + std::to_string(1000 + i) + ":12,";
    write("/etc/usrgrp.info", list + "bob:77\n");
    UserInfo bob = named("bob");
    EXPECT_EQ(GetUserInfo(&bob), 0u);
    EXPECT_EQ(bob.quota, 77u) << users;
  }
}

TEST_F(UsersTest, AllUsersComeWithTheirFieldsAndGroups) {
  const std::ptrdiff_t open_before = open_files();
  UserItem* head = nullptr;
  ASSERT_EQ(GetAllUser(&head), 0u);
  EXPECT_EQ(open_files(), open_before + 1);  // the stream stays open on success
  Strings seen;
  for (const UserItem* item = head; item != nullptr; item = item->next) {
    std::string line = std::string(item->user.name) + "|" + item->user.description + "|" +
                       item->user.password + "|" + std::to_string(item->user.quota) + "|" +
                       std::to_string(item->user.uid) + "|" + item->groups->name;
    for (int i = 0; i < item->groups->count; ++i) line += std::string(" ") + item->groups->list[i];
    seen.push_back(line);
  }
  FreeUserList(head);
  EXPECT_EQ(seen, Strings({"admin|Administrator|Qx7Rm2Lp9Tb4Vk|0|500|admin everyone administrators",
                           "guest|Guest|Qx7Rm2Lp9Tb4Vk|0|501|guest everyone",
                           "alice|Alice Carter|Qx7Rm2Lp9Tb4Vk|500|2000|alice everyone staff family",
                           "bob|Bob Fisher|Qx7Rm2Lp9Tb4Vk|1000|2001|bob everyone staff",
                           "carol||Qx7Rm2Lp9Tb4Vk|0|2002|carol everyone family"}));
}

TEST_F(UsersTest, FailureWhileListingAllClosesAndFreesEverything) {
  struct Case {
    const char* accounts;
    const char* lists;
    unsigned result;
  };
  const Case cases[] = {
      {"alice:x:2000:501:::\nbob\n", "everyone=alice:1\n", 24},
      {"bob:x:2001:501:::\n", "everyone=alice:1,bob\n", 33},
      {"alice:x:2000:501:::\n", "everyone=alice:1\nstaff=alice\n", 24},  // in the groups alone
      {"alice:x:2000:501:::\n", "", 33},
  };
  for (const Case& c : cases) {
    write("/etc/passwd", c.accounts);
    write("/etc/usrgrp.info", c.lists);
    EXPECT_EQ(in_process([] {
                const std::ptrdiff_t open_before = open_files();
                UserItem* head = nullptr;
                const unsigned result = GetAllUser(&head);
                EXPECT_EQ(open_files(), open_before);
                return result;
              }),
              c.result)
        << c.lists;
  }
  ASSERT_EQ(unlink("/etc/usrgrp.info"), 0);
  UserItem* head = nullptr;
  EXPECT_EQ(GetAllUser(&head), 21u);
  EXPECT_EQ(GetAllUser(nullptr), 20u);
}

TEST_F(UsersTest, PasswordIsCheckedInTwoHalves) {
  const std::string accounts =
      "salty:ab9oe0cBWCtKU:2003:501:::/dev/null\n"
      "homely:JqEAm.QJjPY0A:2004:501::/home/user4:/dev/null\n"
      "elsewhere:JqEAm.QJjPY0A:2005:501::/home/u:/dev/null\n"
      "locked:*:2006:501:::\nempty::2007:501:::\nshadowed:x:2008:501:::\nodd:\\!\\!:2009:501:::\n";
  write("/etc/passwd", read("/etc/passwd") + accounts);
  struct Case {
    const char* name;
    const char* password;
    int correct;
  };
  const Case cases[] = {
      {"alice", "sesame42", 1},
      {"alice", "sesame4", 0},
      {"alice", "sesame42more", 1},  // there is no second hash that could tell
      {"alice", "", 0},
      {"Alice", "sesame42", 0},
      {"bob", "correcthorsebattery", 1},
      {"bob", "correcthorsebat", 1},  // 15 characters count
      {"bob", "correcthorsebat12345", 1},
      {"bob", "correcthorseba", 0},
      {"bob", "correcth", 0},
      {"bob", "Xorrecthorsebattery", 0},
      {"guest", "", 1},
      {"guest", "x", 0},
      {"salty", "sesame42", 1},
      {"homely", "sesame42", 1},
      {"elsewhere", "sesame42", 0},  // a field 6 that is no hash matches nothing
      {"locked", "", 0},
      {"locked", "*", 0},
      {"empty", "", 0},
      {"shadowed", "x", 0},
      {"odd", "x", 0},
      {"ghost", "", 0},
      {"", "", 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IsUserPassCorrect(c.name, c.password), c.correct) << c.name << " " << c.password;
  }
  EXPECT_EQ(IsUserPassCorrect(nullptr, ""), 0);
  EXPECT_EQ(IsUserPassCorrect("alice", nullptr), 0);
}

}  // namespace
