/* The edits of member lists in /etc/group: what becomes of the file, byte for byte. */
#include "filesharing/groups.h"
#include "tests/device_test.h"
#include "tests/member_calls.h"

namespace {

const std::string k40 = "a123456789b123456789c123456789d123456789";
const std::string k41 = k40 + "x";

struct Edit {
  const char* what;
  std::string before;
  const char* name;
  const char* names;
  std::string after; /* empty: the call fails and the file stays */
};

class GroupFileTest : public DeviceTest {
 protected:
  /* Each in a process of its own, as each page is. */
  static void check(MemberFunction function, unsigned failure, const std::vector<Edit>& edits) {
    for (const Edit& edit : edits) {
      SCOPED_TRACE(edit.what);
      write("/etc/group", edit.before);
      write("/etc/usrgrp.info", "everyone=bob:5,carol:0\nstaff=\nfamily=\n");
      EXPECT_EQ(in_process([&] { return call(function, edit.name, edit.names); }),
                edit.after.empty() ? failure : 0u);
      EXPECT_EQ(read("/etc/group"), edit.after.empty() ? edit.before : edit.after);
    }
  }
};

/* What stands beside the line of "staff" and must pass through unchanged. */
const std::string kOddLines =
    "\n\r\nshort\nshort:x\n:\n::x:1:staff:\n#staff:x:1:\nstaffs:x:1:a, ,b ,\r\n" + k40 +
    "staff:x:1:bob\nlong:x:1:" + k41 + "\n";
const std::string kOdd = kOddLines + "staff:x:1\n";

TEST_F(GroupFileTest, AddUsersToSysGroup) {
  check(
      AddUsersToSysGroup, 24,
      {{"behind the others", "staff:x:1:Dave\n", "staff", "dave eve", "staff:x:1:Dave,dave,eve\n"},
       {"some are members", "staff:x:1:b,a\n", "staff", "a d b e", "staff:x:1:b,a,d,e\n"},
       {"only the first line, odd ones stay", kOdd + "staff:x:1:a\nstaff:x:1:a\n" + kOdd, "staff",
        "d", kOdd + "staff:x:1:a,d\nstaff:x:1:a\n" + kOdd},
       {"a carriage return ends a line", "x:x:1:\rstaff:x:1:a\n", "staff", "b",
        "x:x:1:\rstaff:x:1:a,b\n"},
       {"no second line end", "staff:x:1:a\r\nx:x:2:\r\n", "staff", "b",
        "staff:x:1:a,b\nx:x:2:\r\n"},
       {"no line feed at the end", "staff:x:1:a", "staff", "b", "staff:x:1:a,b"},
       {"blanks go, commas stay", "staff:x:1: a ,, b c ,\n", "staff", "d", "staff:x:1:a,,b c,,d\n"},
       {"40 characters", "staff:x:1:" + k40 + " \n", "staff", "d", "staff:x:1:" + k40 + ",d\n"},
       {"41 characters", "staff:x:1:a," + k41 + ",b\n", "staff", "d", ""}});
}

TEST_F(GroupFileTest, AddUserToGroups) {
  check(AddUserToGroups, 34,
        {{"behind the others, in each line of each group",
          "family:x:1:\nstaff:x:2:bob\nx:x:3:bob\nstaff:x:4:alice\n", "carol", "staff none family",
          "family:x:1:carol\nstaff:x:2:bob,carol\nx:x:3:bob\nstaff:x:4:alice,carol\n"},
         {"odd lines stay", kOddLines + "staff:x:1:a\n\n\r\nx\n", "carol", "staff",
          kOddLines + "staff:x:1:a,carol\n\n\r\nx\n"},
         {"a line without a name", ":x:1:\nstaff:x:2:\n", "carol", "- staff",
          ":x:1:\nstaff:x:2:carol\n"},
         {"no second line end", "staff:x:1:a\r\nx:x:2:\r\n", "carol", "staff",
          "staff:x:1:a,carol\nx:x:2:\r\n"},
         {"line feed at the end", "staff:x:1:a", "carol", "staff", "staff:x:1:a,carol\n"},
         {"but not behind another group", "staff:x:1:a\nx:x:2:", "carol", "staff",
          "staff:x:1:a,carol\nx:x:2:"},
         {"blanks and empty members go", "staff:x:1: a ,, b c ,\n", "carol", "staff",
          "staff:x:1:a,b c,carol\n"},
         {"41 characters", "family:x:1:\nstaff:x:1:" + k41 + "\n", "carol", "family staff", ""},
         {"no second colon", "x:x:1:\nstaff:x", "carol", "staff", ""}});
}

TEST_F(GroupFileTest, DelUsersFromGroup) {
  check(
      DelUsersFromGroup, 35,
      {{"each of them", "staff:x:1:a,bob,Bob,bob,alice\n", "staff", "alice x bob",
        "staff:x:1:a,Bob\n"},
       {"the only one, in the first line, odd ones stay",
        kOdd + "staff:x:1:bob\nstaff:x:1:bob\n" + kOdd, "staff", "bob",
        kOdd + "staff:x:1:\nstaff:x:1:bob\n" + kOdd},
       {"no line feed at the end", "staff:x:1:bob,a", "staff", "bob", "staff:x:1:a"},
       {"blanks and empty members go", "staff:x:1:, a , bob,\r\n", "staff", "bob", "staff:x:1:a\n"},
       {"41 characters", "staff:x:1:bob," + k41 + "\n", "staff", "bob", ""}});
}

TEST_F(GroupFileTest, DelUserFromGroups) {
  check(
      DelUserFromGroups, 35,
      {{"in each line of each group", "family:x:1:bob,a\nstaff:x:2:bob\nx:x:3:bob\nstaff:x:4:a,bob",
        "bob", "staff none family", "family:x:1:a\nstaff:x:2:\nx:x:3:bob\nstaff:x:4:a\n"},
       {"no third colon", "staff:x:1\n", "bob", "staff", ""},
       {"41 characters", "staff:x:1:bob," + k41 + "\n", "bob", "staff", ""}});
}

/* The counts of AddUsersToSysGroup go on within a process. */
TEST_F(GroupFileTest, LaterCallsInOneProcessTakeUsersForFound) {
  write("/etc/group", "a:x:1:\nb:x:2:\nc:x:3:\n");
  EXPECT_EQ(in_process([] {
              EXPECT_EQ(call(AddUsersToSysGroup, "a", "u"), 0u);
              EXPECT_EQ(call(AddUsersToSysGroup, "b", "u v w"), 0u);
              return call(AddUsersToSysGroup, "c", "u v w");
            }),
            0u);
  EXPECT_EQ(read("/etc/group"), "a:x:1:u\nb:x:2:,u,v\nc:x:3:\n");
}

TEST_F(GroupFileTest, LaterCallsOfTheOthersStartAnew) {
  write("/etc/group", "family:x:1:bob\nstaff:x:2:bob\n");
  EXPECT_EQ(in_process([] {
              EXPECT_EQ(call(AddUserToGroups, "carol", "staff"), 0u);
              EXPECT_EQ(call(DelUsersFromGroup, "staff", "bob"), 0u);
              EXPECT_EQ(call(AddUserToGroups, "bob", "family staff"), 0u);
              return call(DelUserFromGroups, "bob", "family staff");
            }),
            0u);
  EXPECT_EQ(read("/etc/group"), "family:x:1:\nstaff:x:2:carol\n");
}

}  // namespace
