/* The functions that change one of the two group files: what becomes of it, byte for byte. */
#include <cstdlib>
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

class GroupStoreTest : public DeviceTest {
 protected:
  static void check(const std::function<unsigned()>& call, const std::vector<Edit>& edits) {
    for (const Edit& edit : edits) {
      SCOPED_TRACE(edit.what);
      write("/etc/group", edit.before);
      const Snapshot before = snapshot();
      EXPECT_EQ(call(), edit.result);
      EXPECT_EQ(read("/etc/group"), edit.after);
      EXPECT_EQ(changes(before), edit.after == edit.before
                                     ? Strings()
                                     : Strings({"~/harddisk/volume_1/conf/group"}));
    }
  }
};

TEST_F(GroupStoreTest, AddSystemGroup) {
  const std::string full = groups_with_gids(2000, 2252);
  check(
      [] { return SysActGroup("staff", FSH_ADD_GROUP); },
      {{"no file content", "", 0, "staff:x:2000:\n"},
       {"first gap", "a:x:2000:u\nb:x:2002:\nc:x:2001:\nd:x:2004:\n", 0,
        "a:x:2000:u\nb:x:2002:\nc:x:2001:\nd:x:2004:\nstaff:x:2003:\n"},
       {"last gid", groups_with_gids(2000, 2251), 0,
        groups_with_gids(2000, 2251) + "staff:x:2252:\n"},
       {"no gid left, though 2253 and 2254 are free", full, 41, full},
       {"nor one beyond them", full + groups_with_gids(2253, 2255), 41,
        full + groups_with_gids(2253, 2255)},
       {"other gids and short lines are in nobody's way", "a:x:1999:\nb:x:2255:\nc\nd:x\ne:x:-1\n",
        0, "a:x:1999:\nb:x:2255:\nc\nd:x\ne:x:-1\nstaff:x:2000:\n"},
       {"blank lines go, line ends stay", "\na:x:1:\r\n\r\n\n b\n", 0,
        "a:x:1:\r\n b\nstaff:x:2000:\n"},
       {"a last line without its line feed", "a:x:2000:u", 0, "a:x:2000:u\nstaff:x:2001:\n"},
       {"letter case tells groups apart", "Staff:x:2000:\n", 0, "Staff:x:2000:\nstaff:x:2001:\n"},
       {"exists, whatever else is wrong", "a:x:1:\n\nstaff:x\n", 43, "a:x:1:\n\nstaff:x\n"}});
}

TEST_F(GroupStoreTest, DeleteSystemGroup) {
  check([] { return SysActGroup("staff", FSH_DELETE_GROUP); },
        {{"every line of it", "a:x:1:staff\nstaff:x:2000:a\n\nstaffs:x:2001:\nstaff\nstaff:x", 0,
          "a:x:1:staff\nstaffs:x:2001:\nstaff\n"},
         {"none of it", "a:x:1:\n", 0, "a:x:1:\n"}});
}

TEST_F(GroupStoreTest, RenameSystemGroup) {
  check([] { return SysRenGroupName("staff", "team"); },
        {{"only the name changes", "\nstaff:x:2000: a,,b\r\nstaff\nstaffs:x:1:\nstaff:y", 0,
          "\nteam:x:2000: a,,b\r\nstaff\nstaffs:x:1:\nteam:y"},
         {"new name taken", "staff:x:2000:\nteam:x:2001:\n", 43, "staff:x:2000:\nteam:x:2001:\n"},
         {"in other letters", "staff:x:2000:\nTeam:x:2001:\n", 0, "team:x:2000:\nTeam:x:2001:\n"},
         {"no such group", "a:x:1:\n", 0, "a:x:1:\n"}});
}

TEST_F(GroupStoreTest, DeleteAllSystemGroups) {
  const char* const kept[] = {"b", "x"};
  check([&] { return SysDelAllGroup(kept, 2); },
        {{"the ones made here, but not those kept",
          "\nb:x:2001:\na:x:1999:\nc:x:2000:u\nd:x:2254:\ne:x:2255:\nf\ng:x\nc:x:2003", 0,
          "\nb:x:2001:\na:x:1999:\ne:x:2255:\nf\ng:x\n"}});
}

/* An empty command runs first; then no line is left but one that names no key. */
TEST_F(GroupStoreTest, DeleteAllKeysKeepsNone) {
  const char* const names[] = {"everyone"};
  write("/tmp/keys", "everyone=a:0\n\n\r\nstaff\n[s]\n=\n==");
  EXPECT_EQ(DelAllGRP(names, 1, "/tmp/keys"), 0u);
  EXPECT_EQ(read("/tmp/keys"), "==");
  ASSERT_EQ(rename("/bin/sh", "/bin/sh.before"), 0);
  ASSERT_EQ(symlink("/usr/local/bin/stand_in", "/bin/sh"), 0);
  clear_commands();
  EXPECT_EQ(DelAllGRP(nullptr, 1, "/tmp/keys"), 20u);
  EXPECT_EQ(DelAllGRP(names, 1, nullptr), 20u);
  EXPECT_EQ(DelAllGRP(names, 1, ""), 20u);
  EXPECT_EQ(commands(), Strings(3, "/bin/sh [-c] []"));
  ASSERT_EQ(rename("/bin/sh.before", "/bin/sh"), 0);
}

TEST_F(GroupStoreTest, RefusalsAndFailuresOfEachStep) {
  const char* const kept[] = {"everyone", nullptr};
  struct {
    std::function<unsigned()> call;
    unsigned not_copied;
  } const functions[] = {
      {[] { return SysActGroup("new", FSH_ADD_GROUP); }, 37},
      {[] { return SysActGroup("staff", FSH_DELETE_GROUP); }, 38},
      {[] { return SysRenGroupName("staff", "new"); }, 39},
      {[&] { return SysDelAllGroup(kept, 1); }, 38},
      {[&] { return DelAllGRP(kept, 1, "/etc/group"); }, 38},
  };
  EXPECT_EQ(SysActGroup(nullptr, FSH_ADD_GROUP), 20u);
  EXPECT_EQ(SysActGroup("", FSH_DELETE_GROUP), 20u);
  EXPECT_EQ(SysActGroup("new", 2), 20u);
  EXPECT_EQ(SysRenGroupName("staff", ""), 20u);
  EXPECT_EQ(SysRenGroupName(nullptr, "new"), 20u);
  EXPECT_EQ(SysDelAllGroup(nullptr, 1), 20u);
  EXPECT_EQ(SysDelAllGroup(kept, 0), 20u);
  EXPECT_EQ(SysDelAllGroup(kept, 2), 20u);
  EXPECT_EQ(commands(), Strings());
  const Snapshot before = snapshot();
  for (const auto& function : functions) {
    fail_command("cp", 1);
    clear_commands();
    EXPECT_EQ(function.call(), function.not_copied);
    EXPECT_EQ(commands(), joined({replaced("/etc/group", 1), {"sync"}}));
    EXPECT_EQ(changes(before), Strings());
  }
  ASSERT_EQ(unlink("/harddisk/volume_1/conf/group"), 0);
  for (const auto& function : functions) EXPECT_EQ(function.call(), 21u);
  ASSERT_EQ(rmdir("/harddisk/volume_1/conf/tmp"), 0);
  for (const auto& function : functions) EXPECT_EQ(function.call(), 22u);
}

}  // namespace
