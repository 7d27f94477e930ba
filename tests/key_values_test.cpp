// Reading, deleting and renaming keys and sections.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <memory>

#include "filesharing/conf.h"
#include "tests/device_test.h"

namespace {

constexpr char kFile[] = "/etc/usrgrp.info";
constexpr char kReal[] = "~/harddisk/volume_1/conf/usrgrp.info";
constexpr char kCopy[] =
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [/etc/usrgrp.info]";
constexpr char kTemporary[] = "+/harddisk/volume_1/conf/tmp/tmpfile.XXXXXX";

class KeyValuesTest : public DeviceTest {
 protected:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> open(const std::string& text) {
    write(kFile, text);
    return std::unique_ptr<std::FILE, Close>(std::fopen(kFile, "r"));
  }
};

TEST_F(KeyValuesTest, GettersFindTheFirstKeyOfTheSection) {
  const auto file = open(
      "top=1\nName=abcdef\r\n[music]x\ndir=/a\n dir=/b\n[Music]\ndir=/c\nempty=\n[last]\nend=no "
      "end");
  struct Case {
    const char* section;
    const char* key;
    unsigned result;
    const char* value;
  };
  const Case cases[] = {
      {nullptr, "top", 0, "1"},
      {"nowhere", "top", 0, "1"},  // no such section: the lines before the first header
      {"nowhere", "dir", FSH_FAILED, ""},
      {nullptr, "dir", FSH_FAILED, ""},
      {"music", "dir", 0, "/a"},  // a header is matched by its beginning
      {"[music]", "dir", 0, "/a"},
      {"Music", "dir", 0, "/c"},
      {"Music", "empty", 0, ""},
      {"music", "empty", FSH_FAILED, ""},
      {"last", "end", 0, "no end"},
      {nullptr, "name", FSH_FAILED, ""},
      {nullptr, "Name", 0, "abcdef"},
  };
  for (const Case& c : cases) {
    char value[80] = "";
    EXPECT_EQ(FSH_GetStr(c.section, c.key, value, 79, file.get()), c.result) << c.key;
    EXPECT_STREQ(value, c.value) << c.key;
  }
  char value[80];
  EXPECT_EQ(FSH_GetStrNoCase(nullptr, "nAME", value, 3, file.get()), 0u);
  EXPECT_STREQ(value, "abc");
  EXPECT_EQ(FSH_GetStrNoCase("MUSIC", "dir", value, 79, file.get()), FSH_FAILED);
  EXPECT_EQ(FSH_GetStr(nullptr, nullptr, value, 79, file.get()), FSH_FAILED);
  EXPECT_EQ(FSH_GetStr(nullptr, "top", nullptr, 79, file.get()), FSH_FAILED);
  EXPECT_EQ(FSH_GetStr(nullptr, "top", value, 79, nullptr), FSH_FAILED);
}

TEST_F(KeyValuesTest, LengthCountsToTheLineFeed) {
  const auto file = open("x\nlonger line than the key\nName=abc\r\n[s]\n name=1\nname= 12");
  const auto length = [&](const char* section, const char* key) {
    return FSH_GetStrLen(section, key, file.get());
  };
  EXPECT_EQ(length(nullptr, "name"), 4u);  // the carriage return counts
  EXPECT_EQ(length("s", "name"), 3u);      // to the end of the file
  EXPECT_EQ(length(nullptr, "other"), 0u);
  EXPECT_EQ(length("s", "other"), 0u);
  EXPECT_EQ(length("nowhere", "name"), FSH_FAILED);
  EXPECT_EQ(length(nullptr, nullptr), FSH_FAILED);
  EXPECT_EQ(FSH_GetStrLen(nullptr, "name", nullptr), FSH_FAILED);
}

// Every form of line that an administrator leaves behind, and what each edit makes of it.
TEST_F(KeyValuesTest, EditsTouchOnlyTheLinesTheyAreFor) {
  const std::string filler(126, 'f');
  const std::string text = "# comment\r\n\nbob:1\nbobby:2\n bob:3\nbob=4\n[bob]x\r\n[bob]\n" +
                           filler + "\n" + filler + "fbob:5\nno sign\n\r\nbob:" + filler + filler +
                           "\n[bob]";
  struct Case {
    const char* name;
    std::function<unsigned()> edit;
    std::string expected;
  };
  const auto replaced = [&](std::vector<std::pair<std::string, std::string>> changes) {
    std::string result = text;
    for (const auto& [from, to] : changes) {
      for (std::size_t at = result.find(from); at != std::string::npos;
           at = result.find(from, at + to.size())) {
        result.replace(at, from.size(), to);
      }
    }
    return result;
  };
  const Case cases[] = {
      {"delete lines", [] { return DelKeyItem("bob", kFile, ':'); },
       replaced({{"\nbob:1\n", "\n"}, {"\nbob:" + filler + filler + "\n", "\n"}})},
      {"delete keys", [] { return DelKeyFromConf("bob", kFile); },
       replaced({{"\r\n\n", "\r\n"}, {"\nbob=4\n", "\n"}})},
      {"delete blank lines", [] { return DelKeyFromConf("nobody", kFile); },
       replaced({{"\r\n\n", "\r\n"}})},
      {"a line without a sign is no key", [] { return DelKeyFromConf("no sign\n", kFile); },
       replaced({{"\r\n\n", "\r\n"}})},
      {"rename keys", [] { return RenameKey("bob", "Robert", kFile); },
       replaced({{"\nbob=4", "\nRobert=4"}})},
      {"rename lines", [] { return RenameKey1("bob", "al", kFile); },
       replaced({{"\nbob:", "\nal:"}})},
      {"rename sections", [] { return RenameSect("bob", "al", kFile); },
       replaced({{"\n[bob]x\r\n", "\n[al]\n"}, {"\n[bob]\n", "\n[al]\n"}, {"\n[bob]", "\n[al]"}})},
  };
  for (const Case& c : cases) {
    write(kFile, text);
    clear_commands();
    const Snapshot before = snapshot();
    EXPECT_EQ(c.edit(), 0u) << c.name;
    EXPECT_EQ(read(kFile), c.expected) << c.name;
    EXPECT_EQ(changes(before), Strings({kReal})) << c.name;
    EXPECT_EQ(commands(), Strings({kCopy, kCopy})) << c.name;
  }
}

TEST_F(KeyValuesTest, NothingToDeleteLeavesTheFileAlone) {
  const Snapshot before = snapshot();
  EXPECT_EQ(DelKeyItem("nobody", kFile, '='), 0u);
  EXPECT_EQ(commands(), Strings());
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(KeyValuesTest, FailedCopyBackLeavesFileAndNoTemporary) {
  const std::pair<std::function<unsigned()>, unsigned> edits[] = {
      {[] { return DelKeyItem("staff", kFile, '='); }, FSH_COPY_BACK_FAILED},
      {[] { return DelKeyFromConf("staff", kFile); }, FSH_COPY_BACK_FAILED},
      {[] { return RenameKey("staff", "team", kFile); }, FSH_FAILED},
  };
  for (const auto& [edit, code] : edits) {
    const Snapshot before = snapshot();
    fail_command("cp", 0);
    errno = ECHILD;  // of an earlier command
    EXPECT_EQ(edit(), code);
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(KeyValuesTest, SecondCopyDecides) {
  write(kFile, "a=1\n");
  fail_command("cp", 1);
  EXPECT_EQ(RenameKey("a", "b", kFile), 0u);
  EXPECT_EQ(read(kFile), "b=1\n");
  fail_command("cp", 2);
  EXPECT_EQ(RenameKey("b", "c", kFile), FSH_FAILED);
  EXPECT_EQ(read(kFile), "c=1\n") << "the first copy had worked";
}

// A web server that ignores SIGCHLD hides the status of every command.
TEST_F(KeyValuesTest, UncollectedCopyCountsAsDone) {
  write(kFile, "a=1\n");
  EXPECT_EQ(in_process([] {
              std::signal(SIGCHLD, SIG_IGN);
              const unsigned result = RenameKey("a", "b", kFile) + DelKeyFromConf("c", kFile);
              return std::signal(SIGCHLD, SIG_DFL) == SIG_IGN ? result : 99u;
            }),
            0u);
  EXPECT_EQ(read(kFile), "b=1\n");
  EXPECT_EQ(in_process([] {
              std::signal(SIGCHLD, SIG_IGN);
              const unsigned result = DelKeyItem("b", kFile, '=');
              return std::signal(SIGCHLD, SIG_DFL) == SIG_DFL ? result : 99u;
            }),
            0u);
}

TEST_F(KeyValuesTest, RefusalsAndWhatTheyLeaveBehind) {
  const Snapshot before = snapshot();
  for (const char* wrong : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_EQ(DelKeyItem(wrong, kFile, '='), 20u);
    EXPECT_EQ(DelKeyItem("staff", wrong, '='), 20u);
    EXPECT_EQ(DelKeyFromConf(wrong, kFile), 20u);
    EXPECT_EQ(DelKeyFromConf("staff", wrong), 20u);
  }
  EXPECT_EQ(RenameKey(nullptr, "b", kFile), FSH_FAILED);
  EXPECT_EQ(RenameKey1("a", nullptr, kFile), FSH_FAILED);
  EXPECT_EQ(RenameSect("a", "b", nullptr), FSH_FAILED);
  EXPECT_EQ(RenameKey("a", "b", "/etc/nothing"), FSH_FAILED);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(DelKeyItem("a", "/etc/nothing", '='), 21u);
  EXPECT_EQ(changes(before), Strings({kTemporary}));
  EXPECT_EQ(DelKeyFromConf("a", "/etc/nothing"), 21u);
  EXPECT_EQ(changes(before), Strings({kTemporary, kTemporary}));
}

TEST_F(KeyValuesTest, NoFolderForTemporaryFiles) {
  ASSERT_EQ(system("rm -r /harddisk/volume_1/conf/tmp"), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(DelKeyItem("staff", kFile, '='), 22u);
  EXPECT_EQ(DelKeyFromConf("staff", kFile), 22u);
  EXPECT_EQ(RenameSect("a", "b", kFile), 22u);
  EXPECT_EQ(changes(before), Strings());
}

// What can not be read is not written either: a folder opens like a file.
TEST_F(KeyValuesTest, SourceThatCanNotBeReadIsNotReplaced) {
  ASSERT_EQ(mkdir("/etc/folder", 0755), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(DelKeyFromConf("a", "/etc/folder"), FSH_COPY_BACK_FAILED);
  EXPECT_EQ(RenameKey("a", "b", "/etc/folder"), FSH_FAILED);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

// A disk too full for the rewritten copy must not cost the file.
TEST_F(KeyValuesTest, FullDiskLosesNothing) {
  write("/etc/big.conf", "a=1\n" + std::string(200000, 'x') + "\n");
  const std::string text = read("/etc/big.conf");
  unmount_volume(1);
  mount_volume(2, "64k");
  write("/harddisk/volume_2/conf/.qv27", "");
  EXPECT_EQ(RenameKey("a", "b", "/etc/big.conf"), FSH_FAILED);
  EXPECT_EQ(DelKeyFromConf("a", "/etc/big.conf"), FSH_COPY_BACK_FAILED);
  EXPECT_EQ(read("/etc/big.conf"), text);
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
