/* The sections of smb.conf and the lines of AppleVolumes.conf that make up a share. */
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <memory>
#include <utility>

#include "filesharing/shares.h"
#include "tests/device_test.h"

namespace {

constexpr char kSmb[] = "/etc/samba/smb.conf";
constexpr char kAfp[] = "/etc/netatalk/AppleVolumes.conf";
constexpr char kSmbCopy[] =
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [/etc/samba/smb.conf]";
constexpr char kAfpCopy[] =
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [/etc/netatalk/AppleVolumes.conf]";

constexpr char kDocsBody[] =
    "valid users=@\"administrators\",@\"staff\",@\"guests\",@\"odd\"\n"
    "comment=All of it\n"
    "path=/harddisk/volume_2/data/Docs/\n"
    "read only=yes\n"
    "write list=@\"administrators\",@\"staff\"\n";
constexpr char kDocsLine[] =
    "\"/harddisk/volume_2/data/Docs/\" \"[Docs]\"  rwlist:@\"administrators\",@\"staff\" "
    "allow:@\"administrators\",@\"staff\",@\"guests\",@\"odd\"\n";

/* A record with its access list. */
class Share {
 public:
  using Groups = std::vector<std::pair<const char*, int>>;

  Share(const char* name, const char* comment, const char* path, int volume, const Groups& groups)
      : entries_(groups.size()) {
    std::strcpy(record_.name, name);
    std::strcpy(record_.comment, comment);
    std::strcpy(record_.path, path);
    record_.volume = volume;
    for (std::size_t i = groups.size(); i-- > 0;) {
      std::strcpy(entries_[i].name, groups[i].first);
      entries_[i].rights = groups[i].second;
      entries_[i].next = std::exchange(record_.groups, &entries_[i]);
    }
  }

  const ShareInfo* operator&() const { return &record_; }

 private:
  ShareInfo record_{};
  std::vector<ShareGroup> entries_;
};

Share docs() {
  return {"Docs",
          "All of it",
          "/Docs",
          2,
          {{"staff", 7}, {"administrators", 7}, {"guests", 5}, {"odd", 6}}};
}

class ShareSectionsTest : public DeviceTest {
 protected:
  template <class Write>
  static std::string written(Write write_entry, const Share& share, unsigned read_only) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/tmp/entry", "w"), std::fclose);
    write_entry(&share, file.get(), read_only);
    std::fflush(file.get());
    return read("/tmp/entry");
  }
};

TEST_F(ShareSectionsTest, AccessListDecidesWhoEntersAndWhoWrites) {
  const Share nobody("a", "", "/", 1, {});
  const Share no_name("a", "", "/x/", 5, {{"", 7}, {"b", 7}});
  const Share administrators("a", "", "", 1, {{"administrators", 5}});
  struct Case {
    const char* what;
    Share share;
    unsigned read_only;
    std::string section;
    std::string line;
  };
  const Case cases[] = {
      {"mixed rights", docs(), 0, kDocsBody, kDocsLine},
      {"read only", docs(), 4,
       "valid users=@\"administrators\",@\"staff\",@\"guests\",@\"odd\"\ncomment=All of it\n"
       "path=/harddisk/volume_2/data/Docs/\nread only=yes\nwrite list=@\"administrators\"\n",
       "\"/harddisk/volume_2/data/Docs/\" \"[Docs]\"  rwlist:@\"administrators\" "
       "allow:@\"administrators\",@\"staff\",@\"guests\",@\"odd\"\n"},
      {"no groups, a whole volume", nobody, 0,
       "valid users=@\"administrators\"\ncomment=\npath=/harddisk/volume_1/data/\nread only=yes\n"
       "write list=@\"administrators\"\n",
       "\"/harddisk/volume_1/data/\" \"[a]\"  rwlist:@\"administrators\" "
       "allow:@\"administrators\"\n"},
      {"administrators are never less", administrators, 1,
       "valid users=@\"administrators\"\ncomment=\npath=/harddisk/volume_1/data/\nread only=yes\n"
       "write list=@\"administrators\"\n",
       "\"/harddisk/volume_1/data/\" \"[a]\"  rwlist:@\"administrators\" "
       "allow:@\"administrators\"\n"},
      {"a group without a name may write but not enter", no_name, 0,
       "valid users=@\"administrators\",@\"b\"\ncomment=\npath=/harddisk/volume_5/data/x/\n"
       "read only=yes\nwrite list=@\"administrators\",@\"\",@\"b\"\n",
       "\"/harddisk/volume_5/data/x/\" \"[a]\"  rwlist:@\"administrators\",@\"\",@\"b\" "
       "allow:@\"administrators\",@\"b\"\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(written(write_share, c.share, c.read_only), c.section) << c.what;
    EXPECT_EQ(written(write_afp, c.share, c.read_only), c.line) << c.what;
  }
  write_share(nullptr, stderr, 0);
  write_afp(nullptr, stderr, 0);
  write_share(&nobody, nullptr, 0);
  write_afp(&nobody, nullptr, 0);
}

TEST_F(ShareSectionsTest, FieldsMayBeFilledToTheLastByte) {
  ShareInfo full{};
  std::memset(full.name, 'n', sizeof full.name);
  std::memset(full.comment, 'c', sizeof full.comment);
  std::memset(full.path, 'p', sizeof full.path);
  EXPECT_EQ(WriteSmbShare(&full), 0u);
  EXPECT_TRUE(read(kSmb).ends_with(
      "[" + std::string(21, 'n') + "]\nvalid users=@\"administrators\"\ncomment=" +
      std::string(49, 'c') + "\npath=/harddisk/volume_0/data" + std::string(258, 'p') +
      "/\nread only=yes\nwrite list=@\"administrators\"\n"));
  EXPECT_EQ(WriteAFPShare(&full), 0u);
  EXPECT_NE(read(kAfp).find("\"[" + std::string(21, 'n') + "]\"  rwlist"), std::string::npos);
}

TEST_F(ShareSectionsTest, SectionIsReplacedInPlaceOrAppended) {
  const std::string body = kDocsBody;
  struct Case {
    const char* what;
    std::string before;
    std::string after;
  };
  const Case cases[] = {
      {"between neighbours",
       "; first\r\n\r\n[global]\r\n  workgroup = X\n\n[ Docs]\n[docs]\n[Docs] ; ours\r\n"
       "path=/old\n\n# gone too\n[Music]\n a=b\n\n",
       "; first\r\n\r\n[global]\r\n  workgroup = X\n\n[ Docs]\n[docs]\n[Docs] ; ours\r\n" + body +
           "[Music]\n a=b\n\n"},
      {"to the end of the file", "[a]\nb=c\n[Docs]\nx=y\nz", "[a]\nb=c\n[Docs]\n" + body},
      {"header at the end", "[a]\n[Docs]", "[a]\n[Docs]\n" + body},
      {"new, behind an open last line", "[a]\nb=c", "[a]\nb=c\n[Docs]\n" + body},
      {"new, behind a blank line", "[a]\n\n", "[a]\n\n[Docs]\n" + body},
      {"new, the first", "", "[Docs]\n" + body},
      {"indented headers are none", " [Docs]\nx=y\n", " [Docs]\nx=y\n[Docs]\n" + body},
      {"open bracket is no header", "[Docs\nx=y\n[Docs\n]\n",
       "[Docs\nx=y\n[Docs\n]\n[Docs]\n" + body},
      {"open bracket ends the old body", "[Docs]\nx=y\n[open\nz=1\n",
       "[Docs]\n" + body + "[open\nz=1\n"},
      {"straight behind: kept", "[Docs]\n[Docs]\nx=y\n", "[Docs]\n" + body + "[Docs]\nx=y\n"},
      {"further on: replaced", "[Docs]\n[a]\n[Docs]\nx=y\n",
       "[Docs]\n" + body + "[a]\n[Docs]\n" + body},
      {"a longer name", "[Docs2]\nx=y\n[Docs]]\nz\n", "[Docs2]\nx=y\n[Docs]]\n" + body},
  };
  for (const Case& c : cases) {
    write(kSmb, c.before);
    clear_commands();
    EXPECT_EQ(WriteSmbShare(&docs()), 0u) << c.what;
    EXPECT_EQ(read(kSmb), c.after) << c.what;
    EXPECT_EQ(commands(), Strings({kSmbCopy, kSmbCopy, "sleep 2"})) << c.what;
  }
}

TEST_F(ShareSectionsTest, LineIsReplacedInPlaceOrAppended) {
  const std::string line = kDocsLine;
  struct Case {
    const char* what;
    std::string before;
    std::string after;
  };
  const Case cases[] = {
      {"between neighbours",
       "# x\r\n\n\"/a/\" \"[docs]\" \n\"/old\" \"[Docs]\" y\r\n/b \"[Docs2]\"",
       "# x\r\n\n\"/a/\" \"[docs]\" \n" + line + "/b \"[Docs2]\""},
      {"at the open end", "~\n\"/old\" \"[Docs]\"", "~\n" + line},
      {"new, behind an open last line", "~", "~\n" + line},
      {"new, the first", "", line},
      {"both marks, in this order", "[Docs]\n]\"x\"[Docs\n\"[Docs]\n[Docs]\"\n",
       "[Docs]\n]\"x\"[Docs\n\"[Docs]\n[Docs]\"\n" + line},
      {"folders do not count", "\"/harddisk/volume_2/data/Docs/\" \"[x]\"\n",
       "\"/harddisk/volume_2/data/Docs/\" \"[x]\"\n" + line},
      {"each line of the name", "\"[Docs]\"\na\n\"[Docs]\"\n", line + "a\n" + line},
  };
  for (const Case& c : cases) {
    write(kAfp, c.before);
    clear_commands();
    EXPECT_EQ(WriteAFPShare(&docs()), 0u) << c.what;
    EXPECT_EQ(read(kAfp), c.after) << c.what;
    EXPECT_EQ(commands(), Strings({kAfpCopy, kAfpCopy, "sleep 2"})) << c.what;
  }
}

TEST_F(ShareSectionsTest, LineGoesWithItsFolder) {
  const std::string others =
      "\"/harddisk/volume_1/data/Music2/\" \"[b]\"\n\n \"/harddisk/volume_1/data/Music/\"\r\n"
      "\"/harddisk/volume_1/data/music/\" x";
  write(kAfp, "\"/harddisk/volume_1/data/Music/\" \"[a]\"\n" + others);
  EXPECT_EQ(DelShareFromAFP("\"/harddisk/volume_1/data/Music/\""), 0u);
  EXPECT_EQ(read(kAfp), others);
  clear_commands();
  EXPECT_EQ(DelShareFromAFP("\"/none/\""), 0u);
  EXPECT_EQ(read(kAfp), others);
  EXPECT_EQ(commands(), Strings({kAfpCopy, kAfpCopy, "sleep 2"}));
  EXPECT_EQ(DelShareFromAFP(""), 20u);
  EXPECT_EQ(DelShareFromAFP(nullptr), 20u);
}

TEST_F(ShareSectionsTest, SectionGoesFromTheFileThatHasTheShare) {
  const std::string sections = "[FLASH_1_1]\na=b\n[HDD]\n[hdd]\n[Music]\nc=d\n[xFLASH]\n";
  const char* removable = "/etc/samba/user_smb.conf";
  write(kSmb, sections);
  write(removable, sections);
  EXPECT_EQ(DelShareFromSMB("FLASH_1_1"), 0u);
  EXPECT_EQ(DelShareFromSMB("HDD"), 0u);
  EXPECT_EQ(DelShareFromSMB("HDD"), 0u);
  EXPECT_EQ(read(kSmb), sections);
  EXPECT_EQ(DelShareFromSMB("Music"), 0u);
  EXPECT_EQ(DelShareFromSMB("xFLASH"), 0u);
  EXPECT_EQ(read(kSmb), "[FLASH_1_1]\na=b\n[HDD]\n[hdd]\n");
  EXPECT_NE(read(removable).find("[Music]\nc=d\n[xFLASH]\n"), std::string::npos);
  EXPECT_EQ(read(removable).find("FLASH_1_1"), std::string::npos);
  EXPECT_EQ(commands(), Strings());

  unlink(kSmb);
  EXPECT_EQ(DelShareFromSMB("Music"), FSH_FAILED);
  EXPECT_EQ(DelShareFromSMB(""), 20u);
  EXPECT_EQ(DelShareFromSMB(nullptr), 20u);
}

/* One table for the three rewrites: what fails, what is left. */
TEST_F(ShareSectionsTest, FailedRewriteLeavesTheFileAndNothingElse) {
  struct Rewrite {
    const char* file;
    unsigned code;
    std::function<unsigned()> run;
  };
  const Rewrite rewrites[] = {
      {kSmb, 45, [] { return SetSmbShare(&docs(), 0); }},
      {kAfp, 19, [] { return SetAFPShare(&docs(), 0); }},
      {kAfp, 19, [] { return DelShareFromAFP("\"/harddisk/volume_1/data/Music/\""); }},
  };
  for (const Rewrite& rewrite : rewrites) {
    const Snapshot before = snapshot();
    fail_command("cp", 1);
    fail_command("cp", 2);
    clear_commands();
    EXPECT_EQ(rewrite.run(), rewrite.code);
    EXPECT_EQ(changes(before), Strings());
    EXPECT_EQ(commands().size(), 2u); /* both copies, no wait */

    fail_command("cp", 2); /* the first one has done the work, yet the second one counts */
    EXPECT_EQ(rewrite.run(), rewrite.code);
    EXPECT_EQ(changes(before).size(), 1u);

    fail_command("cp", 1);
    EXPECT_EQ(rewrite.run(), 0u);

    ASSERT_EQ(unlink(rewrite.file), 0);
    const Snapshot without = snapshot();
    EXPECT_EQ(rewrite.run(), 21u);
    EXPECT_EQ(changes(without), Strings());
    rmdir("/harddisk/volume_1/conf/tmp");
    EXPECT_EQ(rewrite.run(), 22u); /* the temporary file comes first */
    ASSERT_EQ(mkdir("/harddisk/volume_1/conf/tmp", 0755), 0);
    write(rewrite.file, "\"/harddisk/volume_1/data/Music/\"\n");
  }
  EXPECT_EQ(SetSmbShare(nullptr, 0), 20u);
  EXPECT_EQ(SetAFPShare(nullptr, 0), 20u);
}

TEST_F(ShareSectionsTest, IgnoredChildSignal) {
  struct Case {
    unsigned result;
    bool made_default;
    std::function<unsigned()> run;
  };
  const Case cases[] = {
      {0, true, [] { return SetSmbShare(&docs(), 0); }},
      {0, true, [] { return SetAFPShare(&docs(), 0); }},
      {20, true, [] { return SetSmbShare(nullptr, 0); }},
      {19, false, [] { return DelShareFromAFP("\"/none/\""); }},
  };
  for (const Case& c : cases) {
    signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(c.run(), c.result);
    EXPECT_EQ(signal(SIGCHLD, SIG_DFL) == SIG_DFL, c.made_default);
  }
}

}  // namespace
