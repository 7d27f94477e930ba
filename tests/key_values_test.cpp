// Reading, deleting and renaming keys and sections.
#include <sys/stat.h>

#include <csignal>
#include <memory>

#include "filesharing/conf.h"
#include "tests/device_test.h"

namespace {

constexpr char kFile[] = "/etc/usrgrp.info";
constexpr char kCopy[] =
    "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [/etc/usrgrp.info]";

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
  const std::tuple<const char*, const char*, unsigned, const char*> cases[] = {
      {nullptr, "top", 0, "1"},
      {"nowhere", "top", 0, "1"},  // no such section: the lines before the first header
      {nullptr, "dir", FSH_FAILED, ""},
      {"music", "dir", 0, "/a"},  // a header is matched by its beginning
      {"[music]", "dir", 0, "/a"},
      {"Music", "empty", 0, ""},
      {"music", "empty", FSH_FAILED, ""},
      {"last", "end", 0, "no end"},
      {nullptr, "name", FSH_FAILED, ""},
  };
  for (const auto& [section, key, result, expected] : cases) {
    char value[80] = "";
    EXPECT_EQ(FSH_GetStr(section, key, value, 79, file.get()), result) << key;
    EXPECT_STREQ(value, expected) << key;
  }
  char value[80];
  EXPECT_EQ(FSH_GetStrNoCase(nullptr, "nAME", value, 3, file.get()), 0u);
  EXPECT_STREQ(value, "abc");
  EXPECT_EQ(FSH_GetStrNoCase("MUSIC", "dir", value, 79, file.get()), FSH_FAILED);
}

TEST_F(KeyValuesTest, LengthCountsToTheLineFeed) {
  const auto file = open("x\nlonger line than the key\nName=abc\r\n[s]\n name=1\nname= 12");
  const auto length = [&](const char* section, const char* key) {
    return FSH_GetStrLen(section, key, file.get());
  };
  EXPECT_EQ(length(nullptr, "name"), 4u);  // the carriage return counts
  EXPECT_EQ(length("s", "name"), 3u);      // to the end of the file
  EXPECT_EQ(length("[s]", "name"), 3u);
  EXPECT_EQ(length(nullptr, "other"), 0u);
  EXPECT_EQ(length("nowhere", "name"), FSH_FAILED);
}

// Every form of line that an administrator leaves behind, and what each edit makes of it.
TEST_F(KeyValuesTest, EditsTouchOnlyTheLinesTheyAreFor) {
  const std::string filler(126, 'f');
  const std::string text = "# comment\r\n\nbob:1\nbobby:2\n bob:3\nbob=4\n[bob]x\r\n[bob]\n" +
                           filler + "\n" + filler + "fbob:5\nno sign\n\r\nbob:" + filler + filler +
                           "\n[bob]";
  const auto replaced = [&](const std::vector<std::pair<std::string, std::string>>& changes) {
    std::string result = text;
    for (const auto& [from, to] : changes) {
      for (auto at = result.find(from); at != std::string::npos; at = result.find(from, at + 1)) {
        result.replace(at, from.size(), to);
      }
    }
    return result;
  };
  const std::tuple<const char*, std::function<unsigned()>, std::string> cases[] = {
      {"delete lines", [] { return DelKeyItem("bob", kFile, ':'); },
       replaced({{"\nbob:1\n", "\n"}, {"\nbob:" + filler + filler + "\n", "\n"}})},
      {"delete keys", [] { return DelKeyFromConf("bob", kFile); },
       replaced({{"\r\n\n", "\r\n"}, {"\nbob=4\n", "\n"}})},
      {"delete blank lines", [] { return DelKeyFromConf("no sign\n", kFile); },
       replaced({{"\r\n\n", "\r\n"}})},
      {"rename keys", [] { return RenameKey("bob", "Robert", kFile); },
       replaced({{"\nbob=4", "\nRobert=4"}})},
      {"rename lines", [] { return RenameKey1("bob", "al", kFile); },
       replaced({{"\nbob:", "\nal:"}})},
      {"rename sections", [] { return RenameSect("bob", "al", kFile); },
       replaced({{"\n[bob]x\r\n", "\n[al]\n"}, {"\n[bob]\n", "\n[al]\n"}, {"\n[bob]", "\n[al]"}})},
  };
  for (const auto& [name, edit, expected] : cases) {
    write(kFile, text);
    clear_commands();
    EXPECT_EQ(edit(), 0u) << name;
    EXPECT_EQ(read(kFile), expected) << name;
    EXPECT_EQ(commands(), Strings({kCopy, kCopy})) << name;
  }
}

TEST_F(KeyValuesTest, NothingToDeleteLeavesTheFileAlone) {
  const Snapshot before = snapshot();
  EXPECT_EQ(DelKeyItem("nobody", kFile, '='), 0u);
  EXPECT_EQ(commands(), Strings());
  EXPECT_EQ(changes(before), Strings());
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

// What can not be read is not written either: a folder opens like a file.
TEST_F(KeyValuesTest, SourceThatCanNotBeReadIsNotReplaced) {
  ASSERT_EQ(mkdir("/etc/folder", 0755), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(DelKeyFromConf("a", "/etc/folder"), FSH_COPY_BACK_FAILED);
  EXPECT_EQ(RenameKey("a", "b", "/etc/folder"), FSH_FAILED);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

}  // namespace
