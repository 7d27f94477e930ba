/* The functions that change one of the two group files: what becomes of it, byte for byte. */
#include <functional>

#include "filesharing/groups.h"
#include "tests/account_commands.h"

namespace {

std::string groups_with_gids(int first, int last) {
  std::string lines;
  for (int gid = first; gid <= last; ++gid) {
    lines += "g" + std::to_string(gid) + ":x:" + std::to_string(gid) + ":\n";
  }
  return lines;
}

struct Edit {
  const char* what;
  std::string before;
  unsigned result;
  std::string after;
};

const char* const kKept[] = {"everyone", "x", nullptr};

class GroupStoreTest : public DeviceTest {
 protected:
  static void check(const std::function<unsigned()>& call, const std::vector<Edit>& edits) {
    for (const Edit& edit : edits) {
      SCOPED_TRACE(edit.what);
      write("/etc/group", edit.before);
      clear_commands();
      EXPECT_EQ(call(), edit.result);
      EXPECT_EQ(read("/etc/group"), edit.after);
      if (edit.result == 0) {
        EXPECT_EQ(commands(), joined({replaced("/etc/group", 1), {"sync"}}));
      }
    }
  }
};

TEST_F(GroupStoreTest, AddSystemGroup) {
  const std::string full = groups_with_gids(2000, 2252);
  const std::string some = groups_with_gids(2000, 2251);
  const std::string others = "a:x:1999:\nb:x:2255:\nc\nd:x\nStaff:x:-1\n";
  check([] { return SysActGroup("staff", FSH_ADD_GROUP); },
        {{"first gap", "a:x:2000:u\nb:x:2002:\nc:x:2001:\nd:x:2004:\n", 0,
          "a:x:2000:u\nb:x:2002:\nc:x:2001:\nd:x:2004:\nstaff:x:2003:\n"},
         {"last gid", some, 0, some + "staff:x:2252:\n"},
         {"no gid left, though 2253 and 2254 are free", full, 41, full},
         {"others are in nobody's way", others, 0, others + "staff:x:2000:\n"},
         {"blank lines go, line ends stay", "\na:x:1:\r\n\r\n\n b\n", 0,
          "a:x:1:\r\n b\nstaff:x:2000:\n"},
         {"no line feed at the end", "a:x:2000:u", 0, "a:x:2000:u\nstaff:x:2001:\n"},
         {"exists, whatever else is wrong", "a:x:1:\n\nstaff:x\n", 43, "a:x:1:\n\nstaff:x\n"}});
}

TEST_F(GroupStoreTest, DeleteAndRenameSystemGroups) {
  check([] { return SysActGroup("staff", FSH_DELETE_GROUP); },
        {{"every line of it", "a:x:1:staff\nstaff:x:2000:a\n\nstaffs:x:2001:\nstaff\nstaff:x", 0,
          "a:x:1:staff\nstaffs:x:2001:\nstaff\n"}});
  check([] { return SysRenGroupName("staff", "team"); },
        {{"only the name changes", "\nstaff:x:2000: a,,b\r\nstaff\nTeam:x:1:\nstaff:y", 0,
          "\nteam:x:2000: a,,b\r\nstaff\nTeam:x:1:\nteam:y"},
         {"new name taken", "staff:x:2000:\nteam:x:1:\n", 43, "staff:x:2000:\nteam:x:1:\n"}});
  check([] { return SysDelAllGroup(kKept, 2); },
        {{"the ones made here, but not those kept",
          "\nx:x:2001:\na:x:1999:\nc:x:2000:u\nd:x:2254:\ne:x:2255:\nf\ng:x\nc:x:2003", 0,
          "\nx:x:2001:\na:x:1999:\ne:x:2255:\nf\ng:x\n"}});
}

/* An empty command runs first; then no line is left but one that names no key. */
TEST_F(GroupStoreTest, DeleteAllKeysKeepsNone) {
  write("/tmp/keys", "everyone=a:0\n\n\r\nstaff\n[s]\n=\n==");
  EXPECT_EQ(DelAllGRP(kKept, 1, "/tmp/keys"), 0u);
  EXPECT_EQ(read("/tmp/keys"), "==");
  ASSERT_EQ(rename("/bin/sh", "/bin/sh.before"), 0);
  ASSERT_EQ(symlink("/usr/local/bin/stand_in", "/bin/sh"), 0);
  clear_commands();
  EXPECT_EQ(DelAllGRP(nullptr, 1, "/tmp/keys"), 20u);
  EXPECT_EQ(DelAllGRP(kKept, 1, ""), 20u);
  EXPECT_EQ(commands(), Strings(2, "/bin/sh [-c] []"));
  ASSERT_EQ(rename("/bin/sh.before", "/bin/sh"), 0);
}

}  // namespace
