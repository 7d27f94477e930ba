/* Giving groups access to shares and taking it away: the four places that carry the lists, batches
 * and what is left when one fails in the middle. */
#include <sys/stat.h>

#include <csignal>

#include "tests/share_records.h"

namespace {

/* The groups of one share in each place's own form. */
struct Lists {
  std::string registry, users, writers, rwlist, allow;
};

/* For reading and writing, with the arguments of the removals. */
unsigned grant(const char* group, const char* share) {
  return AddGroupToShare(group, share, 0);
}
unsigned grant_groups(const char* share, const char* const* groups, int count) {
  return AddGroupsToShare(share, groups, count, 0);
}
unsigned grant_shares(const char* group, const char* const* shares, int count) {
  return AddGroupToShares(group, shares, count, 0);
}

class AccessListsTest : public ShareTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    write_files(files_with(
        {":a:7,administrators:7,b:5", "@\"a\",@\"b\",@\"old\"", "@\"a\"", "@\"x\"", "@\"y\""},
        "  "));
  }

  /* The files with the share "docs" between neighbours that look like it. */
  static Strings files_with(const Lists& lists, const std::string& separator = " ") {
    return {"doc=0:1:stays:/Docs/:a:7\ndocs=0:1:c:/docs/" + lists.registry + "\nlast=0:1::/l/\n",
            "doc=stays:/Docs/:a:7\ndocs=c:/docs/" + lists.registry + "\nlast=:/l/\n",
            "; [docs]\nvalid users=stays\n[Docs]\nvalid users=stays\nwrite list=stays\n"
            "[docs]\n# write list=stays\nvalid users=" +
                lists.users + "\ncomment=c\npath=/harddisk/volume_1/data/docs/\nread only=yes\n" +
                "write list=" + lists.writers + "\n[docs2]\nvalid users = stays\nwrite list=stays",
            "\"/x/\" \"[Docs]\" allow:stays\r\n\"/harddisk/volume_1/data/docs/\" \"[docs]\"" +
                separator + "rwlist:" + lists.rwlist + " allow:" + lists.allow + "\n\n# stays"};
  }

  static void write_files(const Strings& contents) {
    for (size_t i = 0; i < contents.size(); ++i) write(kShareFiles[i], contents[i]);
  }
};

TEST_F(AccessListsTest, RemovedGroupIsGoneEverywhereAndTheAfpLineLosesItsQuotes) {
  write("/tmp/share.lck", ""); /* the caller's */
  const Snapshot before = snapshot();
  fail_command("cp", 1); /* of two runs the second counts */
  fail_command("cp", 3);
  ASSERT_EQ(DelGroupFromShare("b", "docs"), 0u);
  EXPECT_EQ(files(),
            files_with({":a:7,administrators:7", "@\"administrators\",@\"a\"",
                        "@\"administrators\",@\"a\"", "@administrators,@a", "@administrators,@a"}));
  const std::string smb = copy_to("/etc/samba/smb.conf"), afp = copy_to(kAfp);
  EXPECT_EQ(commands(), Strings({smb, smb, afp, afp})); /* and no wait */
  EXPECT_EQ(changes(before).size(), 4u);                /* no temporary file is left */
  signal(SIGCHLD, SIG_IGN);                             /* is undone, so that failures are seen */
  fail_command("cp", 2);
  EXPECT_EQ(DelGroupFromShare("a", "docs"), 40u);
}

/* Rights that are neither 7 nor 5 count as writing here; rwlist takes those who only read. */
TEST_F(AccessListsTest, ListsOfThoseWhoStay) {
  write_files(files_with({":A:7,a:7,b:5,c:3,:7,a:5", "old", "old", "old", "old"}));
  ASSERT_EQ(DelGroupFromShare("a", "docs"), 0u);
  EXPECT_EQ(files(), files_with({":A:7,b:5,c:3,:7", "@\"administrators\",@\"A\",@\"b\",@\"c\"",
                                 "@\"administrators\",@\"A\",@\"c\",@\"\"",
                                 "@administrators,@A,@b,@c,@", "@administrators,@A,@c"}));
  write_files(files_with({":administrators:5", "old", "old", "old", "old"}));
  ASSERT_EQ(DelGroupFromShare("administrators", "docs"), 0u);
  EXPECT_EQ(files(), files_with({"", "@\"administrators\"", "@\"administrators\"",
                                 "@administrators", "@administrators"}));
}

TEST_F(AccessListsTest, OnlyListsWithinTheSectionOfTheShareAreReplaced) {
  write(kRegistry, "docs=0:1:c:/docs/:a:5,b:7\n");
  write(kSmb,
        "write list=before\n"
        "[docs] # no header\nvalid users=stays\n"
        "[docs]\r\nvalid users=1\r\nvalid users = 2\r\nwrite list=3\r\n"
        "[x] still docs\nvalid users\nwrite list=second stays\n write list=stays\n\n"
        "[other]\nvalid users=stays\n[docs]\nwrite list");
  write(kAfp, "# [docs] a remark with the name\n\"/a[docs]/\" \"[x]\"\n] [docs]\n\"/d/\" [docs");
  ASSERT_EQ(DelGroupFromShare("b", "docs"), 0u);
  const std::string users = "valid users=@\"administrators\",@\"a\"\n";
  const std::string writers = "write list=@\"administrators\"\n";
  EXPECT_EQ(read(kSmb),
            "write list=before\n"
            "[docs] # no header\nvalid users=stays\n"
            "[docs]\r\n" +
                users + users + writers + "[x] still docs\n" + users +
                "write list=second stays\n write list=stays\n\n"
                "[other]\nvalid users=stays\n[docs]\n" +
                writers);
  const std::string lists = " rwlist:@administrators,@a allow:@administrators\n";
  EXPECT_EQ(read(kAfp), "# [docs] " + lists + "\"/a[docs]/" + lists + "] [docs]\n\"/d/\" [docs");
}

TEST_F(AccessListsTest, PublicShareHasItsShortNameOnItsVolumeAndARemovableOneGetsALineThere) {
  mount_volume(3);
  write(kRegistry, "DISK 1=0:1:c:/public/:a:7,b:5\n");
  write(kOnVolume, "DISK=c:/public/:a:7,b:5\n");
  write(kRemovable, "FLASH_1_1=0:3:c:/FLASH_1_1/:administrators:7,a:7\n");
  write("/etc/samba/user_smb.conf", "[FLASH_1_1]\nvalid users=@\"a\"\nwrite list= x\n");
  const std::string fixed = read(kSmb);
  ASSERT_EQ(DelGroupFromShare("a", "DISK 1"), 0u);
  ASSERT_EQ(DelGroupFromShare("a", "FLASH_1_1"), 0u);
  EXPECT_EQ(read(kRegistry), "DISK 1=0:1:c:/public/:b:5\n");
  EXPECT_EQ(read(kOnVolume), "DISK=c:/public/:b:5\n");
  EXPECT_EQ(read(kRemovable), "FLASH_1_1=0:3:c:/FLASH_1_1/:administrators:7\n");
  EXPECT_EQ(read("/harddisk/volume_3/conf/share.info"),
            "FLASH_1_1=c:/FLASH_1_1/:administrators:7\n");
  EXPECT_EQ(read("/etc/samba/user_smb.conf"),
            "[FLASH_1_1]\nvalid users=@\"administrators\"\nwrite list=@\"administrators\"\n");
  EXPECT_EQ(read(kSmb), fixed);
}

TEST_F(AccessListsTest, RemovalEndsAtTheFirstStepThatFailsAndKeepsTheOthers) {
  constexpr char kTemporaries[] = "/harddisk/volume_1/conf/tmp";
  const struct {
    const char* missing;
    bool is_folder; /* that is there instead */
    int failing_copy;
    unsigned code;
    size_t steps; /* that are done */
  } cases[] = {
      {kTemporaries, false, 0, 22, 0}, {kOnVolume, true, 0, 40, 1}, {kSmb, false, 0, 21, 2},
      {kSmb, true, 0, 40, 2},          {nullptr, false, 2, 40, 2},  {kAfp, false, 0, 21, 3},
      {nullptr, false, 4, 40, 3},
  };
  const Strings before = files();
  ASSERT_EQ(DelGroupFromShare("a", "docs"), 0u);
  const Strings after = files();
  for (const auto& c : cases) {
    write_files(before);
    if (c.missing != nullptr) remove(c.missing);
    if (c.is_folder) mkdir(c.missing, 0777);
    if (c.failing_copy != 0) fail_both_copies(c.failing_copy);
    EXPECT_EQ(DelGroupFromShare("a", "docs"), c.code) << c.steps;
    for (size_t i = 0; i < after.size(); ++i) {
      if (kShareFiles[i] != c.missing) {
        EXPECT_EQ(read(kShareFiles[i]), (i < c.steps ? after : before)[i]) << c.code;
      }
    }
    if (c.missing != nullptr) remove(c.missing);
    remove(kTemporaries);
    ASSERT_EQ(mkdir(kTemporaries, 0777), 0) << "a temporary file is left";
  }
}

TEST_F(AccessListsTest, GrantedGroupStandsAtTheEndOfEveryList) {
  write("/tmp/share.lck", ""); /* the caller's */
  ASSERT_EQ(AddGroupToShare("c", "docs", 0), 0u);
  ASSERT_EQ(AddGroupToShare("d", "docs", -1), 0u);
  const std::string all = "@\"administrators\",@\"a\",@\"b\",@\"c\",@\"d\"";
  const std::string writers = "@\"administrators\",@\"a\",@\"c\"";
  Strings expected =
      files_with({":a:7,administrators:7,b:5,c:7,d:5", all, writers, writers, all}, "  ");
  expected[2].replace(expected[2].find("# write list=stays\n"), 19, ""); /* written whole */
  EXPECT_EQ(files(), expected);
}

TEST_F(AccessListsTest, RefusedChangesLockNothingAndALockTakenBeforeABusyOneStays) {
  write("/tmp/smb.lck", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(grant("a", "docs"), 55u);
  const char* const names[] = {"none"};
  for (const auto change : {DelGroupFromShare, grant}) {
    EXPECT_EQ(change("", "docs"), 20u);
    EXPECT_EQ(change("a", nullptr), 20u);
    EXPECT_EQ(change("a", "none"), 49u);
    EXPECT_EQ(change("b", "DOCS"), 47u); /* it exists, but is not found */
  }
  for (const auto batch : {DelGroupFromShares, DelGroupsFromShare, grant_shares, grant_groups}) {
    EXPECT_EQ(batch("", names, 1), 20u);
    EXPECT_EQ(batch("docs", nullptr, 1), 20u);
    EXPECT_EQ(batch("docs", names, 0), 20u);
  }
  EXPECT_EQ(grant_groups("none", names, 1), 49u);
  EXPECT_EQ(DelGroupsFromShare("none", names, 1), 49u);
  EXPECT_EQ(changes(before), Strings());

  const auto expect_busy = [&](auto batch, unsigned code) {
    EXPECT_EQ(batch("docs", names, 1), code); /* and not that there is no such share */
    EXPECT_EQ(changes(before), Strings({"+/tmp/share.lck"}));
    remove("/tmp/share.lck");
  };
  expect_busy(grant_shares, 51u);
  expect_busy(grant_groups, 51u);
  expect_busy(DelGroupFromShares, 52u);
  expect_busy(DelGroupsFromShare, 52u);
  EXPECT_EQ(commands(), Strings());
}

TEST_F(AccessListsTest, BatchesChangeEachInOrder) {
  const std::string docs = "doc=0:1:stays:/Docs/:a:7\ndocs=0:1:c:/docs/:a:7,administrators:7,b:5";
  const char* const groups[] = {"c", "d"};
  const char* const shares[] = {"last", "docs"};
  ASSERT_EQ(AddGroupsToShare("docs", groups, 2, 1), 0u);
  ASSERT_EQ(AddGroupToShares("e", shares, 2, 0), 0u);
  EXPECT_EQ(read(kRegistry), docs + ",c:5,d:5,e:7\nlast=0:1::/l/:e:7\n");
  ASSERT_EQ(DelGroupsFromShare("docs", groups, 2), 0u);
  ASSERT_EQ(DelGroupFromShares("e", shares, 2), 0u);
  EXPECT_EQ(read(kRegistry), docs + "\nlast=0:1::/l/\n");
  expect_no_locks();
}

/* /etc/share.info is a file of its own here, so that the line that was written stays in it. */
TEST_F(AccessListsTest, BatchThatFailsInTheMiddleIsRestored) {
  const Strings before = files();
  const auto expect_restored = [&](auto batch, const char* subject,
                                   const std::vector<const char*>& names, unsigned code) {
    EXPECT_EQ(batch(subject, names.data(), 3), code);
    EXPECT_EQ(read(kOnVolume), before[1]);
    EXPECT_EQ(read(kSmb), before[2]);
    EXPECT_TRUE(read(kRegistry).ends_with("\nlast=0:1::/l/\n")) << "the third was changed";
    expect_no_locks();
  };
  expect_restored(grant_groups, "docs", {"z", "", "x"}, 20);
  expect_restored(grant_shares, "y", {"docs", "none", "last"}, 49);
  expect_restored(DelGroupsFromShare, "docs", {"z", "", "a"}, 20);
  expect_restored(DelGroupFromShares, "a", {"docs", "none", "last"}, 49);
  EXPECT_EQ(read(kRegistry).find("x:7"), std::string::npos);
}

}  // namespace
