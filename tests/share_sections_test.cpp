/* The sections of smb.conf and the lines of AppleVolumes.conf that make up a share. What a failing
 * step leaves stands in docs/faults.md. */
#include <csignal>
#include <memory>

#include "tests/account_commands.h"
#include "tests/share_records.h"

namespace {

/* A record with its access list, from a value of the registry. */
class Share {
 public:
  Share(const char* name, const char* value) : record_(share_record(name)) {
    EXPECT_EQ(ShareStringPar(value, &record_), 0u);
  }
  Share(const Share&) = delete;
  ~Share() { FreeShGrpList(record_.groups); }

  const ShareInfo* operator&() const { return &record_; }

 private:
  ShareInfo record_{};
};

Share docs() {
  return {"Docs", "0:2:All of it:/Docs:staff:7,administrators:7,guests:5,odd:6"};
}

constexpr char kAdministrators[] = "@\"administrators\"";
constexpr char kUsers[] = "@\"administrators\",@\"staff\",@\"guests\",@\"odd\"";
constexpr char kWriters[] = "@\"administrators\",@\"staff\"";
constexpr char kFolder[] = "/harddisk/volume_2/data/Docs/";

std::string section_body(const std::string& users, const std::string& writers,
                         const std::string& folder, const std::string& comment = "All of it") {
  return "valid users=" + users + "\ncomment=" + comment + "\npath=" + folder +
         "\nread only=yes\nwrite list=" + writers + "\n";
}

std::string afp_line(const std::string& users, const std::string& writers,
                     const std::string& folder) {
  return "\"" + folder + "\" \"[Docs]\"  rwlist:" + writers + " allow:" + users + "\n";
}

struct Rewrite {
  const char* what;
  std::string before;
  std::string after;
};

class ShareSectionsTest : public ShareTest {
 protected:
  template <class Write>
  static std::string written(Write write_entry, const ShareInfo* share, unsigned read_only) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/tmp/entry", "w"), std::fclose);
    write_entry(share, file.get(), read_only);
    write_entry(share, nullptr, read_only);
    write_entry(nullptr, file.get(), read_only);
    std::fflush(file.get());
    return read("/tmp/entry");
  }

  /* `path` as the command that puts the file in its place names it. */
  static void expect_rewritten(const std::string& path, unsigned (*write_share)(const ShareInfo*),
                               const std::vector<Rewrite>& rewrites) {
    for (const Rewrite& rewrite : rewrites) {
      write(path, rewrite.before);
      clear_commands();
      EXPECT_EQ(write_share(&docs()), 0u) << rewrite.what;
      EXPECT_EQ(read(path), rewrite.after) << rewrite.what;
      EXPECT_EQ(commands(), joined({replaced(path, 2), {"sleep 2"}})) << rewrite.what;
    }
  }
};

TEST_F(ShareSectionsTest, AccessListDecidesWhoEntersAndWhoWrites) {
  const std::string administrators = kAdministrators, root = "/harddisk/volume_1/data/";
  const struct {
    const char* what;
    const char* place_and_groups;
    unsigned read_only;
    std::string users, writers, folder;
  } cases[] = {
      {"read only", "/Docs:staff:7,guests:5,odd:6", 4, kUsers, administrators, root + "Docs/"},
      {"no groups, a whole volume", "/", 0, administrators, administrators, root},
      {"administrators are never less", ":administrators:5", 1, administrators, administrators,
       root},
      {"a group without a name may write but not enter", "/x/::7,b:7", 0,
       administrators + ",@\"b\"", administrators + ",@\"\",@\"b\"", root + "x/"},
  };
  for (const auto& c : cases) {
    const Share share("Docs", (std::string("0:1:All of it:") + c.place_and_groups).c_str());
    EXPECT_EQ(written(write_share, &share, c.read_only), section_body(c.users, c.writers, c.folder))
        << c.what;
    EXPECT_EQ(written(write_afp, &share, c.read_only), afp_line(c.users, c.writers, c.folder))
        << c.what;
  }
}

TEST_F(ShareSectionsTest, FieldsMayBeFilledToTheLastByte) {
  ShareInfo full{};
  std::memset(full.name, 'n', sizeof full.name);
  std::memset(full.comment, 'c', sizeof full.comment);
  std::memset(full.path, 'p', sizeof full.path);
  EXPECT_EQ(WriteSmbShare(&full), 0u);
  EXPECT_TRUE(read(kSmb).ends_with(
      "[" + std::string(21, 'n') + "]\n" +
      section_body(kAdministrators, kAdministrators,
                   "/harddisk/volume_0/data" + std::string(258, 'p') + "/", std::string(49, 'c'))));
  EXPECT_EQ(WriteAFPShare(&full), 0u);
  EXPECT_NE(read(kAfp).find("\"[" + std::string(21, 'n') + "]\"  rwlist"), std::string::npos);
}

TEST_F(ShareSectionsTest, SectionIsReplacedInPlaceOrAppended) {
  const std::string body = section_body(kUsers, kWriters, kFolder);
  expect_rewritten(
      "/etc/samba/smb.conf", WriteSmbShare,
      {
          {"between neighbours",
           "; first\r\n\r\n[global]\r\n  workgroup = X\n\n[ Docs]\n[docs]\n[Docs] ; ours\r\n"
           "path=/old\n\n# gone too\n[Music]\n a=b\n\n",
           "; first\r\n\r\n[global]\r\n  workgroup = X\n\n[ Docs]\n[docs]\n[Docs] ; ours\r\n" +
               body + "[Music]\n a=b\n\n"},
          {"to the end of the file", "[Docs2]\nx=y\n[Docs]]\nz", "[Docs2]\nx=y\n[Docs]]\n" + body},
          {"new, behind an open last line", "[a]\nb=c", "[a]\nb=c\n[Docs]\n" + body},
          {"new, the first", "", "[Docs]\n" + body},
          {"indented headers are none", " [Docs]\nx=y\n", " [Docs]\nx=y\n[Docs]\n" + body},
          {"open bracket is no header", "[Docs\nx=y\n[Docs\n]\n",
           "[Docs\nx=y\n[Docs\n]\n[Docs]\n" + body},
          {"open bracket ends the old body", "[Docs]\nx=y\n[open\nz=1\n",
           "[Docs]\n" + body + "[open\nz=1\n"},
          {"straight behind: kept", "[Docs]\n[Docs]\nx=y\n", "[Docs]\n" + body + "[Docs]\nx=y\n"},
          {"further on: replaced", "[Docs]\n[a]\n[Docs]\nx=y\n",
           "[Docs]\n" + body + "[a]\n[Docs]\n" + body},
      });
}

TEST_F(ShareSectionsTest, LineIsReplacedInPlaceOrAppended) {
  const std::string line = afp_line(kUsers, kWriters, kFolder);
  expect_rewritten(
      kAfp, WriteAFPShare,
      {
          {"between neighbours",
           "# x\r\n\n\"/Docs/\" \"[docs]\" \n\"/old\" \"[Docs]\" y\r\n/b \"[Docs2]\"",
           "# x\r\n\n\"/Docs/\" \"[docs]\" \n" + line + "/b \"[Docs2]\""},
          {"at the open end", "~\n\"/old\" \"[Docs]\"", "~\n" + line},
          {"new, behind an open last line", "~", "~\n" + line},
          {"both marks, in this order", "[Docs]\n]\"x\"[Docs\n\"[Docs]\n[Docs]\"\n",
           "[Docs]\n]\"x\"[Docs\n\"[Docs]\n[Docs]\"\n" + line},
          {"each line of the name", "\"[Docs]\"\na\n\"[Docs]\"\n", line + "a\n" + line},
      });
}

TEST_F(ShareSectionsTest, LineGoesWithItsFolder) {
  const std::string others =
      "\"/harddisk/volume_1/data/Music2/\" \"[b]\"\n\n \"/harddisk/volume_1/data/Music/\"\r\nx";
  write(kAfp, "\"/harddisk/volume_1/data/Music/\" \"[a]\"\n" + others);
  EXPECT_EQ(DelShareFromAFP("\"/harddisk/volume_1/data/Music/\""), 0u);
  EXPECT_EQ(read(kAfp), others);
}

TEST_F(ShareSectionsTest, SectionGoesFromTheFileThatHasTheShare) {
  const std::string sections = "[FLASH_1_1]\na=b\n[HDD]\n[hdd]\n[Music]\nc=d\n[xFLASH]\n";
  const char* removable = "/etc/samba/user_smb.conf";
  write(kSmb, sections);
  write(removable, sections);
  for (const char* name : {"FLASH_1_1", "HDD", "HDD", "Music", "xFLASH"}) {
    EXPECT_EQ(DelShareFromSMB(name), 0u);
  }
  EXPECT_EQ(read(kSmb), "[FLASH_1_1]\na=b\n[HDD]\n[hdd]\n");
  EXPECT_EQ(read(removable), "[Music]\nc=d\n[xFLASH]\n");
}

TEST_F(ShareSectionsTest, WritingUndoesAnIgnoredChildSignalAndRemovingDoesNot) {
  const auto expect_default = [](unsigned code, unsigned expected, bool made_default) {
    EXPECT_EQ(code, expected);
    EXPECT_EQ(signal(SIGCHLD, SIG_IGN) == SIG_DFL, made_default);
  };
  signal(SIGCHLD, SIG_IGN);
  expect_default(SetSmbShare(&docs(), 0), 0, true);
  expect_default(SetAFPShare(&docs(), 0), 0, true);
  expect_default(SetSmbShare(nullptr, 0), 20, true);
  expect_default(DelShareFromAFP("\"/none/\""), 19, false);
  signal(SIGCHLD, SIG_DFL);
}

}  // namespace
