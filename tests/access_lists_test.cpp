/* Giving groups access to shares and taking it away: the four places that carry the lists, batches
 * and what is left when one fails in the middle. */
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>

#include "filesharing/shares.h"
#include "tests/device_test.h"

namespace {

const char kRegistry[] = "/etc/share.info";
const char kOnVolume[] = "/harddisk/volume_1/conf/share.info";
const char kSmb[] = "/harddisk/volume_1/conf/smb.conf"; /* what /etc/samba/smb.conf leads to */
const char kAfp[] = "/etc/netatalk/AppleVolumes.conf";

/* What carries one share whose groups are given in each place's own form. */
struct Lists {
  std::string registry, users, writers, rwlist, allow;
};

class AccessListsTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    write_all({"a:7,administrators:7,b:5", "@\"a\",@\"b\",@\"old\"", "@\"a\"", "@\"x\"", "@\"y\""});
  }

  /* The share "docs" between neighbours that look like it. */
  static std::string smb(const Lists& lists) {
    return "; [docs]\nvalid users=stays\n[Docs]\nvalid users=stays\nwrite list=stays\n"
           "[docs]\n# write list=stays\nvalid users=" +
           lists.users +
           "\ncomment=c\n"
           "path=/harddisk/volume_1/data/docs/\nread only=yes\nwrite list=" +
           lists.writers + "\n[docs2]\nvalid users = stays\nwrite list=stays";
  }
  static std::string afp(const Lists& lists, const std::string& separator) {
    return "\"/x/\" \"[Docs]\" allow:stays\r\n\"/harddisk/volume_1/data/docs/\" \"[docs]\"" +
           separator + "rwlist:" + lists.rwlist + " allow:" + lists.allow + "\n\n# stays";
  }
  static std::string registry(const Lists& lists) {
    return "doc=0:1:stays:/Docs/:a:7\ndocs=0:1:c:/docs/:" + lists.registry + "\nlast=0:1::/l/\n";
  }
  static std::string on_volume(const Lists& lists) {
    return "doc=stays:/Docs/:a:7\ndocs=c:/docs/:" + lists.registry + "\nlast=:/l/\n";
  }

  static void write_all(const Lists& lists) {
    write(kRegistry, registry(lists));
    write(kOnVolume, on_volume(lists));
    write(kSmb, smb(lists));
    write(kAfp, afp(lists, "  "));
  }
  static void expect_all(const Lists& lists, const std::string& separator) {
    EXPECT_EQ(read(kRegistry), registry(lists));
    EXPECT_EQ(read(kOnVolume), on_volume(lists));
    EXPECT_EQ(read(kSmb), smb(lists));
    EXPECT_EQ(read(kAfp), afp(lists, separator));
  }
  static void expect_no_locks() {
    EXPECT_FALSE(exists("/tmp/share.lck"));
    EXPECT_FALSE(exists("/tmp/smb.lck"));
  }
};

const std::string kTemporary = "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] ";

TEST_F(AccessListsTest, RemovedGroupIsGoneEverywhereAndTheAfpLineLosesItsQuotes) {
  const Snapshot before = snapshot();
  ASSERT_EQ(DelGroupFromShare("b", "docs"), 0u);
  expect_all({"a:7,administrators:7", "@\"administrators\",@\"a\"", "@\"administrators\",@\"a\"",
              "@administrators,@a", "@administrators,@a"},
             " ");
  const std::string smb = kTemporary + "[/etc/samba/smb.conf]";
  const std::string afp = kTemporary + "[/etc/netatalk/AppleVolumes.conf]";
  EXPECT_EQ(commands(), Strings({smb, smb, afp, afp})); /* and no wait */
  EXPECT_EQ(changes(before),
            Strings({"~/etc/netatalk/AppleVolumes.conf", "~/etc/share.info",
                     "~/harddisk/volume_1/conf/share.info", "~/harddisk/volume_1/conf/smb.conf"}));
}

/* Rights that are neither 7 nor 5 count as writing here; rwlist takes those who only read. */
TEST_F(AccessListsTest, ListsOfThoseWhoStay) {
  struct Case {
    const char* before;
    const char* removed;
    Lists after;
  };
  const Case cases[] = {
      {"a:7,b:5,c:3",
       "a",
       {"b:5,c:3", "@\"administrators\",@\"b\",@\"c\"", "@\"administrators\",@\"c\"",
        "@administrators,@b,@c", "@administrators,@c"}},
      {"a:7,a:5",
       "a",
       {"", "@\"administrators\"", "@\"administrators\"", "@administrators", "@administrators"}},
      {"a:7,:7",
       "A", /* was not in the list: the files are rewritten all the same */
       {"a:7,:7", "@\"administrators\",@\"a\"", "@\"administrators\",@\"a\",@\"\"",
        "@administrators,@a,@", "@administrators,@a"}},
      {"administrators:5,b:7",
       "administrators",
       {"b:7", "@\"administrators\",@\"b\"", "@\"administrators\",@\"b\"", "@administrators,@b",
        "@administrators,@b"}},
  };
  for (const Case& c : cases) {
    write_all({c.before, "old", "old", "old", "old"});
    ASSERT_EQ(DelGroupFromShare(c.removed, "docs"), 0u) << c.before;
    if (c.after.registry.empty()) {
      EXPECT_EQ(read(kRegistry), "doc=0:1:stays:/Docs/:a:7\ndocs=0:1:c:/docs/\nlast=0:1::/l/\n");
      EXPECT_EQ(read(kSmb), smb(c.after));
      EXPECT_EQ(read(kAfp), afp(c.after, " "));
    } else {
      expect_all(c.after, " ");
    }
  }
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

TEST_F(AccessListsTest, PublicShareIsStoredOnItsVolumeUnderItsShortName) {
  write(kRegistry, "DISK 1=0:1:c:/public/:a:7,b:5\n");
  write(kOnVolume, "DISK=c:/public/:a:7,b:5\n");
  ASSERT_EQ(DelGroupFromShare("a", "DISK 1"), 0u);
  EXPECT_EQ(read(kRegistry), "DISK 1=0:1:c:/public/:b:5\n");
  EXPECT_EQ(read(kOnVolume), "DISK=c:/public/:b:5\n");
}

TEST_F(AccessListsTest, RemovableShareGetsALineOnItsVolumeHere) {
  mount_volume(3);
  write("/etc/win_share.info", "FLASH_1_1=0:3:c:/FLASH_1_1/:administrators:7,everyone:7\n");
  write("/etc/samba/user_smb.conf", "[FLASH_1_1]\nvalid users=@\"everyone\"\nwrite list= x\n");
  const std::string fixed = read(kSmb);
  ASSERT_EQ(DelGroupFromShare("everyone", "FLASH_1_1"), 0u);
  EXPECT_EQ(read("/etc/win_share.info"), "FLASH_1_1=0:3:c:/FLASH_1_1/:administrators:7\n");
  EXPECT_EQ(read("/etc/samba/user_smb.conf"),
            "[FLASH_1_1]\nvalid users=@\"administrators\"\n"
            "write list=@\"administrators\"\n");
  EXPECT_EQ(read("/harddisk/volume_3/conf/share.info"),
            "FLASH_1_1=c:/FLASH_1_1/:administrators:7\n");
  EXPECT_EQ(read(kSmb), fixed);
}

TEST_F(AccessListsTest, RemovalEndsAtTheFirstStepThatFailsAndKeepsTheOthers) {
  const std::string gone = "administrators:7,b:5";
  const Lists old{"a:7,administrators:7,b:5", "@\"a\",@\"b\",@\"old\"", "@\"a\"", "@\"x\"",
                  "@\"y\""};
  struct Case {
    const char* step;
    std::function<void()> prepare;
    unsigned code;
    int steps; /* that are done */
  };
  const Case cases[] = {
      {"no temporary file",
       [] { ASSERT_EQ(rename("/harddisk/volume_1/conf/tmp", "/harddisk/volume_1/conf/gone"), 0); },
       22, 0},
      {"list of the volume",
       [] {
         ASSERT_EQ(remove(kOnVolume), 0);
         ASSERT_EQ(mkdir(kOnVolume, 0777), 0);
       },
       40, 1},
      {"no smb.conf", [] { ASSERT_EQ(remove(kSmb), 0); }, 21, 2},
      {"smb.conf not copied",
       [] {
         fail_command("cp", 1);
         fail_command("cp", 2);
       },
       40, 2},
      {"no AppleVolumes.conf", [] { ASSERT_EQ(remove(kAfp), 0); }, 21, 3},
      {"AppleVolumes.conf not copied",
       [] {
         fail_command("cp", 3);
         fail_command("cp", 4);
       },
       40, 3},
  };
  for (const Case& c : cases) {
    SetUp();
    c.prepare();
    EXPECT_EQ(DelGroupFromShare("a", "docs"), c.code) << c.step;
    Lists now = old;
    now.registry = c.steps > 0 ? gone : old.registry;
    EXPECT_EQ(read(kRegistry), registry(now)) << c.step;
    now.registry = c.steps > 1 ? gone : old.registry;
    if (c.steps != 1) {
      EXPECT_EQ(read(kOnVolume), on_volume(now)) << c.step;
    }
    EXPECT_EQ(exists(kSmb) && read(kSmb) != smb(old), c.steps > 2) << c.step;
    EXPECT_EQ(exists(kAfp) && read(kAfp) != afp(old, "  "), false) << c.step;
    EXPECT_EQ(system("test -z \"$(ls /harddisk/volume_1/conf/tmp 2>/dev/null)\""), 0) << c.step;
  }
}

TEST_F(AccessListsTest, OneRunOfACopyMayFailAndAnIgnoredChildSignalIsUndone) {
  fail_command("cp", 1);
  fail_command("cp", 3);
  EXPECT_EQ(DelGroupFromShare("b", "docs"), 0u);
  fail_command("cp", 2); /* the second run counts */
  EXPECT_EQ(DelGroupFromShare("a", "docs"), 40u);
  signal(SIGCHLD, SIG_IGN);
  fail_command("cp", 2);
  EXPECT_EQ(DelGroupFromShare("a", "docs"), 40u);
}

TEST_F(AccessListsTest, GrantedGroupStandsAtTheEndOfEveryList) {
  ASSERT_EQ(AddGroupToShare("c", "docs", 0), 0u);
  ASSERT_EQ(AddGroupToShare("d", "docs", -1), 0u);
  EXPECT_EQ(read(kRegistry),
            "doc=0:1:stays:/Docs/:a:7\n"
            "docs=0:1:c:/docs/:a:7,administrators:7,b:5,c:7,d:5\nlast=0:1::/l/\n");
  const std::string all = "@\"administrators\",@\"a\",@\"b\",@\"c\",@\"d\"";
  EXPECT_NE(read(kSmb).find("[docs]\nvalid users=" + all + "\ncomment=c\n"), std::string::npos);
  EXPECT_EQ(read(kAfp),
            "\"/x/\" \"[Docs]\" allow:stays\r\n"
            "\"/harddisk/volume_1/data/docs/\" \"[docs]\"  "
            "rwlist:@\"administrators\",@\"a\",@\"c\" allow:" +
                all + "\n\n# stays");
  EXPECT_EQ(read(kOnVolume),
            "doc=stays:/Docs/:a:7\ndocs=c:/docs/:a:7,administrators:7,b:5,c:7,d:5\nlast=:/l/\n");
}

TEST_F(AccessListsTest, RefusedGrantsAndRemovalsChangeNothing) {
  const char* const some[] = {"docs"};
  const Snapshot before = snapshot();
  EXPECT_EQ(AddGroupToShare("a", "docs", 1), 55u);
  EXPECT_EQ(AddGroupToShare("a", "DOCS", 0), 47u);
  EXPECT_EQ(AddGroupToShare("", "docs", 0), 20u);
  EXPECT_EQ(AddGroupToShare("a", nullptr, 0), 20u);
  EXPECT_EQ(AddGroupToShare("a", "none", 0), 49u);
  EXPECT_EQ(DelGroupFromShare("a", "DOCS"), 47u);
  EXPECT_EQ(DelGroupFromShare(nullptr, "docs"), 20u);
  EXPECT_EQ(DelGroupFromShare("a", ""), 20u);
  EXPECT_EQ(DelGroupFromShare("a", "none"), 49u);
  for (const auto batch : {AddGroupToShares, AddGroupsToShare}) {
    EXPECT_EQ(batch("docs", nullptr, 1, 0), 20u);
    EXPECT_EQ(batch("docs", some, 0, 0), 20u);
    EXPECT_EQ(batch("", some, 1, 0), 20u);
  }
  for (const auto batch : {DelGroupFromShares, DelGroupsFromShare}) {
    EXPECT_EQ(batch("docs", nullptr, 1), 20u);
    EXPECT_EQ(batch("docs", some, 0), 20u);
    EXPECT_EQ(batch(nullptr, some, 1), 20u);
  }
  EXPECT_EQ(AddGroupsToShare("none", some, 1, 0), 49u);
  EXPECT_EQ(DelGroupsFromShare("none", some, 1), 49u);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(AccessListsTest, BatchesChangeEachInOrder) {
  const char* const groups[] = {"c", "d"};
  const char* const shares[] = {"last", "docs"};
  ASSERT_EQ(AddGroupsToShare("docs", groups, 2, 1), 0u);
  ASSERT_EQ(AddGroupToShares("e", shares, 2, 0), 0u);
  EXPECT_EQ(read(kRegistry),
            "doc=0:1:stays:/Docs/:a:7\n"
            "docs=0:1:c:/docs/:a:7,administrators:7,b:5,c:5,d:5,e:7\n"
            "last=0:1::/l/:e:7\n");
  ASSERT_EQ(DelGroupsFromShare("docs", groups, 2), 0u);
  ASSERT_EQ(DelGroupFromShares("e", shares, 2), 0u);
  EXPECT_EQ(read(kRegistry),
            "doc=0:1:stays:/Docs/:a:7\n"
            "docs=0:1:c:/docs/:a:7,administrators:7,b:5\nlast=0:1::/l/\n");
  expect_no_locks();
}

/* /etc/share.info is a file of its own here, so the line that was written stays in it. */
TEST_F(AccessListsTest, BatchThatFailsInTheMiddleIsRestored) {
  const std::string volume = read(kOnVolume), smb = read(kSmb);
  const char* const add[] = {"c", "a", "d"};
  EXPECT_EQ(AddGroupsToShare("docs", add, 3, 0), 55u);
  EXPECT_EQ(read(kOnVolume), volume);
  EXPECT_EQ(read(kSmb), smb);
  expect_no_locks();

  const char* const shares[] = {"docs", "none", "last"};
  EXPECT_EQ(AddGroupToShares("z", shares, 3, 0), 49u);
  EXPECT_EQ(DelGroupFromShares("a", shares, 3), 49u);
  EXPECT_EQ(read(kOnVolume), volume);
  EXPECT_EQ(read(kSmb), smb);
  EXPECT_EQ(read(kRegistry).find("last=0:1::/l/:"), std::string::npos);

  clear_commands();
  const char* const missing[] = {"b", "", "a"};
  EXPECT_EQ(DelGroupsFromShare("docs", missing, 3), 20u);
  EXPECT_EQ(read(kOnVolume), volume);
  EXPECT_EQ(read(kSmb), smb);
  EXPECT_EQ(commands().size(), 4u + 4u + 4u); /* backup, the first group, restore */
  expect_no_locks();
}

TEST_F(AccessListsTest, BusyLocksWinOverAShareThatIsNotThereAndStay) {
  write("/tmp/smb.lck", "");
  const char* const names[] = {"none"};
  const struct {
    std::function<unsigned()> call;
    unsigned code;
  } cases[] = {{[&] { return AddGroupToShares("a", names, 1, 0); }, 51},
               {[&] { return AddGroupsToShare("docs", names, 1, 0); }, 51},
               {[&] { return DelGroupFromShares("a", names, 1); }, 52},
               {[&] { return DelGroupsFromShare("docs", names, 1); }, 52}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.call(), c.code);
    EXPECT_TRUE(exists("/tmp/smb.lck"));
    EXPECT_EQ(remove("/tmp/share.lck"), 0); /* was taken and stayed */
  }
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
