/* The edits of member lists in /etc/group: what becomes of the file, byte for byte. */
#include <functional>

#include "filesharing/groups.h"
#include "tests/device_test.h"

namespace {

using Call = std::function<unsigned(const char*, const std::vector<const char*>&)>;

using Function = unsigned (*)(const char*, const char* const*, int);

Call with(Function function) {
  return [function](const char* name, const std::vector<const char*>& names) {
    return function(name, names.data(), static_cast<int>(names.size()));
  };
}

const std::string k40 = "a123456789b123456789c123456789d123456789";
const std::string k41 = k40 + "x";

struct Edit {
  const char* what;
  std::string before;
  const char* name;
  std::vector<const char*> names;
  std::string after; /* empty: the call fails and the file stays */
};

class GroupFileTest : public DeviceTest {
 protected:
  /* Each in a process of its own, as each page is. */
  static void check(const Call& call, unsigned failure, const std::vector<Edit>& edits) {
    for (const Edit& edit : edits) {
      SCOPED_TRACE(edit.what);
      write("/etc/group", edit.before);
      write("/etc/usrgrp.info", "everyone=bob:5,carol:0\nstaff=\nfamily=\n");
      EXPECT_EQ(in_process([&] { return call(edit.name, edit.names); }),
                edit.after.empty() ? failure : 0u);
      EXPECT_EQ(read("/etc/group"), edit.after.empty() ? edit.before : edit.after);
    }
  }
};

/* Everything that stands beside the line of "staff" and must pass through unchanged. */
const std::string kOdd =
    "\n\r\nshort\nshort:x\n:\n::x:1:staff:\n#staff:x:1:\nstaffs:x:1:a, ,b ,\r\n" + k40 +
    "staff:x:1:bob\nstaff:x:1\nlong:x:1:" + k41 + "\n";

TEST_F(GroupFileTest, AddUsersToSysGroup) {
  check(with(AddUsersToSysGroup), 24,
        {{"behind the others",
          "staff:x:1:alice\n",
          "staff",
          {"dave", "eve"},
          "staff:x:1:alice,dave,eve\n"},
         {"no members yet", "staff:x:1:\n", "staff", {"dave", "eve"}, "staff:x:1:dave,eve\n"},
         {"some are members",
          "staff:x:1:bob,alice\n",
          "staff",
          {"alice", "dave", "bob", "eve"},
          "staff:x:1:bob,alice,dave,eve\n"},
         {"all are members", "staff:x:1:alice,bob\n", "staff", {"bob"}, "staff:x:1:alice,bob\n"},
         {"letter case", "staff:x:1:Dave\n", "staff", {"dave"}, "staff:x:1:Dave,dave\n"},
         {"odd lines stay",
          kOdd + "staff:x:1:a\n" + kOdd,
          "staff",
          {"dave"},
          kOdd + "staff:x:1:a,dave\n" + kOdd},
         {"only the first line",
          "staff:x:1:a\nstaff:x:1:a\n",
          "staff",
          {"b"},
          "staff:x:1:a,b\nstaff:x:1:a\n"},
         {"a carriage return ends a line",
          "x:x:1:\rstaff:x:1:a\n",
          "staff",
          {"b"},
          "x:x:1:\rstaff:x:1:a,b\n"},
         {"no second line end",
          "staff:x:1:a\r\nx:x:2:\r\n",
          "staff",
          {"b"},
          "staff:x:1:a,b\nx:x:2:\r\n"},
         {"no line feed at the end", "staff:x:1:a", "staff", {"b"}, "staff:x:1:a,b"},
         {"blanks go, commas stay",
          "staff:x:1: a ,, b c ,\n",
          "staff",
          {"d"},
          "staff:x:1:a,,b c,,d\n"},
         {"a comma for an empty list", "staff:x:1:,\n", "staff", {"d"}, "staff:x:1:,d\n"},
         {"unknown group", "staff:x:1:a", "other", {"d"}, "staff:x:1:a"},
         {"40 characters", "staff:x:1:" + k40 + " \n", "staff", {"d"}, "staff:x:1:" + k40 + ",d\n"},
         {"41 characters", "staff:x:1:a," + k41 + ",b\n", "staff", {"d"}, ""}});
}

TEST_F(GroupFileTest, AddUserToGroups) {
  check(
      with(AddUserToGroups), 34,
      {{"behind the others, in each line of each group",
        "family:x:1:\nstaff:x:2:bob\nx:x:3:bob\nstaff:x:4:alice\n",
        "carol",
        {"staff", "none", "family"},
        "family:x:1:carol\nstaff:x:2:bob,carol\nx:x:3:bob\nstaff:x:4:alice,carol\n"},
       {"is a member",
        "staff:x:1:bob,carol,alice\n",
        "carol",
        {"staff"},
        "staff:x:1:bob,carol,alice\n"},
       {"odd lines stay",
        kOdd.substr(0, kOdd.find("staff:x:1\n")) + "staff:x:1:a\n\n\r\nx\n",
        "carol",
        {"staff"},
        kOdd.substr(0, kOdd.find("staff:x:1\n")) + "staff:x:1:a,carol\n\n\r\nx\n"},
       {"only a line feed ends a line of another group",
        "x:x:1:\rstaff:x:1:a\n",
        "carol",
        {"staff"},
        "x:x:1:\rstaff:x:1:a\n"},
       {"no second line end",
        "staff:x:1:a\r\nx:x:2:\r\n",
        "carol",
        {"staff"},
        "staff:x:1:a,carol\nx:x:2:\r\n"},
       {"line feed at the end", "staff:x:1:a", "carol", {"staff"}, "staff:x:1:a,carol\n"},
       {"but not behind another group",
        "staff:x:1:a\nx:x:2:",
        "carol",
        {"staff"},
        "staff:x:1:a,carol\nx:x:2:"},
       {"blanks and empty members go",
        "staff:x:1: a ,, b c ,\n",
        "carol",
        {"staff"},
        "staff:x:1:a,b c,carol\n"},
       {"41 characters", "family:x:1:\nstaff:x:1:" + k41 + "\n", "carol", {"family", "staff"}, ""},
       {"no third colon", "staff:x:1\n", "carol", {"staff"}, ""},
       {"no second colon", "x:x:1:\nstaff:x", "carol", {"staff"}, ""}});
}

TEST_F(GroupFileTest, DelUsersFromGroup) {
  check(with(DelUsersFromGroup), 35,
        {{"each of them",
          "staff:x:1:a,bob,c,bob,alice\n",
          "staff",
          {"alice", "x", "bob"},
          "staff:x:1:a,c\n"},
         {"the only one", "staff:x:1:bob\n", "staff", {"bob"}, "staff:x:1:\n"},
         {"letter case", "staff:x:1:Bob,bobby\n", "staff", {"bob"}, "staff:x:1:Bob,bobby\n"},
         {"odd lines stay",
          kOdd + "staff:x:1:bob\n" + kOdd,
          "staff",
          {"bob"},
          kOdd + "staff:x:1:\n" + kOdd},
         {"only the first line",
          "staff:x:1:bob\nstaff:x:1:bob\n",
          "staff",
          {"bob"},
          "staff:x:1:\nstaff:x:1:bob\n"},
         {"no line feed at the end", "staff:x:1:bob,a", "staff", {"bob"}, "staff:x:1:a"},
         {"blanks and empty members go",
          "staff:x:1:, a , bob,\r\n",
          "staff",
          {"bob"},
          "staff:x:1:a\n"},
         {"unknown group", kOdd, "other", {"bob"}, kOdd},
         {"41 characters", "staff:x:1:bob," + k41 + "\n", "staff", {"bob"}, ""}});
}

TEST_F(GroupFileTest, DelUserFromGroups) {
  check(with(DelUserFromGroups), 35,
        {{"in each line of each group",
          "family:x:1:bob,a\nstaff:x:2:bob\nx:x:3:bob\nstaff:x:4:a,bob\n",
          "bob",
          {"staff", "none", "family"},
          "family:x:1:a\nstaff:x:2:\nx:x:3:bob\nstaff:x:4:a\n"},
         {"line feed at the end", "staff:x:1:a,bob", "bob", {"staff"}, "staff:x:1:a\n"},
         {"no third colon", "staff:x:1\n", "bob", {"staff"}, ""},
         {"41 characters", "staff:x:1:bob," + k41 + "\n", "bob", {"staff"}, ""}});
}

/* More members and more users than any page lists. */
TEST_F(GroupFileTest, ThreeHundredMembers) {
  std::string members;
  Strings users;
  for (int i = 0; i < 300; ++i) {
    members += (i > 0 ? ",m" : "m") + std::to_string(i);
    users.push_back("m" + std::to_string(599 - i)); /* 300 new ones, then the members */
  }
  std::string all = members;
  std::vector<const char*> names;
  for (const std::string& user : users) {
    names.push_back(user.c_str());
    all += "," + user;
  }
  names.push_back("m7");
  write("/etc/group", "staff:x:1:" + members + "\n");
  EXPECT_EQ(in_process([&] { return AddUsersToSysGroup("staff", names.data(), 301); }), 0u);
  EXPECT_EQ(read("/etc/group"), "staff:x:1:" + all + "\n");
}

/* The counts of AddUsersToSysGroup go on within a process. */
TEST_F(GroupFileTest, LaterCallsInOneProcessTakeUsersForFound) {
  write("/etc/group", "a:x:1:\nb:x:2:\nc:x:3:\n");
  EXPECT_EQ(in_process([] {
              const char* const users[] = {"u", "v", "w", "x"};
              EXPECT_EQ(AddUsersToSysGroup("a", users, 1), 0u);
              EXPECT_EQ(AddUsersToSysGroup("b", users, 3), 0u);
              return AddUsersToSysGroup("c", users, 3);
            }),
            0u);
  EXPECT_EQ(read("/etc/group"), "a:x:1:u\nb:x:2:,u,v\nc:x:3:\n");
}

TEST_F(GroupFileTest, LaterRemovalsAndAdditionsToGroupsStartAnew) {
  write("/etc/group", "family:x:1:bob\nstaff:x:2:bob\n");
  const char* const groups[] = {"family", "staff"};
  const char* const bob[] = {"bob"};
  EXPECT_EQ(in_process([&] {
              EXPECT_EQ(AddUserToGroups("carol", groups + 1, 1), 0u);
              EXPECT_EQ(DelUsersFromGroup("staff", bob, 1), 0u);
              EXPECT_EQ(AddUserToGroups("bob", groups, 1), 0u);
              return DelUserFromGroups("bob", groups, 2);
            }),
            0u);
  EXPECT_EQ(read("/etc/group"), "family:x:1:\nstaff:x:2:carol\n");
}

}  // namespace
