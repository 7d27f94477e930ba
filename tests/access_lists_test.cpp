/* Giving groups access to shares and taking it away: the four places that carry the lists, and
 * batches. What a failing step leaves stands in docs/faults.md. */
#include <csignal>

#include "tests/account_commands.h"
#include "tests/share_records.h"

namespace {

/* The groups of one share in each place's own form. */
struct Lists {
  std::string registry, users, writers, rwlist, allow;
};

class AccessListsTest : public ShareTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    write_files(files_with(
        {":a:7,administrators:7,b:5", "@\"a\",@\"b\",@\"old\"", "@\"a\"", "@\"x\"", "@\"y\""},
        "  "));
  }

  /* The files with the share "docs" between neighbours that look like it. */
  static Strings files_with(const Lists& lists, const std::string& separator = " ",
                            const std::string& remark = "# write list=stays\n") {
    return {"doc=0:1:stays:/Docs/:a:7\ndocs=0:1:c:/docs/" + lists.registry + "\nlast=0:1::/l/\n",
            "doc=stays:/Docs/:a:7\ndocs=c:/docs/" + lists.registry + "\nlast=:/l/\n",
            "; [docs]\nvalid users=stays\n[Docs]\nvalid users=stays\nwrite list=stays\n"
            "[docs]\n" +
                remark + "valid users=" + lists.users +
                "\ncomment=c\npath=/harddisk/volume_1/data/docs/\nread only=yes\nwrite list=" +
                lists.writers + "\n[docs2]\nvalid users = stays\nwrite list=stays",
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
  ASSERT_EQ(DelGroupFromShare("b", "docs"), 0u);
  EXPECT_EQ(files(),
            files_with({":a:7,administrators:7", "@\"administrators\",@\"a\"",
                        "@\"administrators\",@\"a\"", "@administrators,@a", "@administrators,@a"}));
  EXPECT_EQ(commands(), joined({replaced("/etc/samba/smb.conf", 2), replaced(kAfp, 2)}));
  EXPECT_EQ(changes(before).size(), 4u); /* no temporary file is left */
  signal(SIGCHLD, SIG_IGN);              /* is undone, so that failures are seen */
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
        "[docs] # no header\nvalid users=stays\n"
        "[docs]\r\nvalid users=1\r\nvalid users = 2\r\nwrite list=3\r\n"
        "[x] still docs\nvalid users\nwrite list=second stays\n write list=stays\n\n"
        "[other]\nvalid users=stays\n[docs]\nwrite list");
  write(kAfp, "# [docs] a remark with the name\n\"/a[docs]/\" \"[x]\"\n] [docs]\n\"/d/\" [docs");
  ASSERT_EQ(DelGroupFromShare("b", "docs"), 0u);
  const std::string users = "valid users=@\"administrators\",@\"a\"\n";
  const std::string writers = "write list=@\"administrators\"\n";
  EXPECT_EQ(read(kSmb), "[docs] # no header\nvalid users=stays\n[docs]\r\n" + users + users +
                            writers + "[x] still docs\n" + users +
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
  write("/etc/samba/user_smb.conf", "[FLASH_1_1]\nvalid users=@\"a\"\n");
  ASSERT_EQ(DelGroupFromShare("a", "DISK 1"), 0u);
  ASSERT_EQ(DelGroupFromShare("a", "FLASH_1_1"), 0u);
  EXPECT_EQ(read(kRegistry) + read(kOnVolume), "DISK 1=0:1:c:/public/:b:5\nDISK=c:/public/:b:5\n");
  const std::string line = "c:/FLASH_1_1/:administrators:7\n";
  EXPECT_EQ(read(kRemovable), "FLASH_1_1=0:3:" + line);
  EXPECT_EQ(read("/harddisk/volume_3/conf/share.info"), "FLASH_1_1=" + line);
  EXPECT_EQ(read("/etc/samba/user_smb.conf"), "[FLASH_1_1]\nvalid users=@\"administrators\"\n");
}

TEST_F(AccessListsTest, GrantedGroupStandsAtTheEndOfEveryListAndTheSectionIsWrittenWhole) {
  write("/tmp/share.lck", ""); /* the caller's */
  ASSERT_EQ(AddGroupToShare("c", "docs", 0), 0u);
  ASSERT_EQ(AddGroupToShare("d", "docs", -1), 0u);
  const std::string all = "@\"administrators\",@\"a\",@\"b\",@\"c\",@\"d\"";
  const std::string writers = "@\"administrators\",@\"a\",@\"c\"";
  EXPECT_EQ(files(), files_with({":a:7,administrators:7,b:5,c:7,d:5", all, writers, writers, all},
                                "  ", ""));
}

TEST_F(AccessListsTest, GroupWithAccessAndShareInOtherLetterCaseAreRefused) {
  const Snapshot before = snapshot();
  EXPECT_EQ(AddGroupToShare("a", "docs", 0), 55u);
  EXPECT_EQ(AddGroupToShare("c", "DOCS", 0), 47u); /* it exists, but is not found */
  EXPECT_EQ(DelGroupFromShare("a", "DOCS"), 47u);
  EXPECT_EQ(changes(before), Strings());
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

}  // namespace
