/* Profile files: what is found, what a change leaves alone, which files are replaced. */
#include "platform/profile/profile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <memory>

#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

constexpr char kPath[] = "/etc/sample.conf";

class ProfileTest : public DeviceTest {
 protected:
  static std::unique_ptr<FILE, int (*)(FILE*)> stream(const std::string& text) {
    write(kPath, text);
    return {fopen(kPath, "re"), &fclose};
  }
};

TEST_F(ProfileTest, FindsTheFirstKeyLineOfTheSection) {
  constexpr char kMissing[] = "(missing)";
  const std::string settings =
      "top=1\r\n\n# network\n[Network]\nname=a\n other = b \nname=c\n[ media ] ; comment\nname=d";
  const std::tuple<std::string, const char*, const char*, std::string> readings[] = {
      {settings, "network", "name", "a"},
      {settings, "NETWORK", "other", "b "},
      {settings, "media", "name", "d"},
      {settings, nullptr, "top", "1"},
      {settings, "network", "Name", kMissing},
      {settings, "net", "name", kMissing},
      {"[\xC3\x84]\nk=v\n", "\xC3\xA4", "k", "v"},
      {"[a]\nk=1\n[a\nk=2\n[b]\nm=3\n", "a", "m", kMissing},
      {"k\nk = \t v=w\r\n", nullptr, "k", "v=w"},
      {std::string("k\0=x\nk=a\0b\n", 11), nullptr, "k", "a"}};
  for (const auto& [text, section, key, want] : readings) {
    char value[64] = "(missing)";
    const int result = PRO_GetStr(section, key, value, 63, stream(text).get());
    EXPECT_EQ(value, want) << text;
    EXPECT_EQ(result, want == kMissing ? -1 : 0) << text;
  }
  EXPECT_EQ(PRO_GetStrLen(nullptr, "k", stream("k= \t v=w\r\n").get()), 6);
}

TEST_F(ProfileTest, CutsAValueAtItsLimitAndTerminatesBehindIt) {
  const std::string text = "key=" + std::string(100000, 'x');
  for (const int limit : {0, 99999, 100000, 100001}) {
    std::string value(static_cast<size_t>(limit) + 2, '~');
    EXPECT_EQ(PRO_GetStr(nullptr, "key", value.data(), limit, stream(text).get()), 0);
    const auto length = static_cast<size_t>(std::min(limit, 100000));
    EXPECT_EQ(value.substr(0, length + 1), std::string(length, 'x') + '\0') << limit;
    EXPECT_EQ(value.back(), '~') << limit;
  }
}

TEST_F(ProfileTest, TakesDecimalNumbersOnly) {
  constexpr int kRefused = 42;
  const std::pair<std::string, int> values[] = {
      {"21", 21},        {" -7 ", -7},      {"+5\r", 5},       {"010", 10},
      {"", kRefused},    {" ", kRefused},   {"5x", kRefused},  {"2147483647", INT_MAX},
      {"1.5", kRefused}, {"1 2", kRefused}, {"+-1", kRefused}, {"2147483648", kRefused}};
  for (const auto& [text, want] : values) {
    int number = kRefused;
    EXPECT_EQ(PRO_GetInt("s", "n", &number, stream("[s]\nn=" + text + "\n").get()),
              want == kRefused ? -1 : 0);
    EXPECT_EQ(number, want) << text;
  }
}

TEST_F(ProfileTest, LeavesTheStreamBehindTheHeader) {
  const auto settings = stream("a=1\n[s] x\nb=2\n");
  char line[16] = "";
  EXPECT_EQ(PRO_2sect("none", settings.get()), -1);
  EXPECT_EQ(PRO_2sect("S", settings.get()), 0) << "from the end of the file too";
  EXPECT_STREQ(fgets(line, sizeof line, settings.get()), "b=2\n");
}

TEST_F(ProfileTest, ChangesOneLineAndNoOtherByte) {
  const std::tuple<std::string, const char*, const char*, const char*, std::string> changes[] = {
      /* a line replaced in its place, with its own line end */
      {"[a]\n; k=0\n  k = 1 \r\nk=2\n\xFF\n", "a", "k", "v", "[a]\n; k=0\nk=v\r\nk=2\n\xFF\n"},
      {"[b]\nk=1\n[A] x\nk=1\n[a]\nk=1\n", "a", "k", "v", "[b]\nk=1\n[A] x\nk=v\n[a]\nk=1\n"},
      {"k=1", nullptr, "k", "", "k="},
      /* a line added at the end of the section, before the blank lines that trail it */
      {"[a]\nx\n\n \t\r\n[b]\n", "a", "k", "v", "[a]\nx\nk=v\n\n \t\r\n[b]\n"},
      {"\n\n[a]\nk=1\n", nullptr, "k", "v", "k=v\n\n\n[a]\nk=1\n"},
      {"[a", nullptr, "k", "v", "k=v\n[a"},
      /* a section added at the end of the file */
      {"x=1", "a", "k", "v", "x=1\n[a]\nk=v\n"},
      /* odd keys and values come back as they went in */
      {"a=b\n", nullptr, "a=b", "c", "a=b\na=b=c\n"},
      {"", "A b", "user name", " x = [y]", "[A b]\nuser name= x = [y]\n"},
  };
  for (const auto& [before, section, key, value, after] : changes) {
    write(kPath, before);
    EXPECT_EQ(PRO_SetStr(section, key, value, kPath), 0) << before;
    EXPECT_EQ(read(kPath), after);
    EXPECT_EQ(PRO_SetStr1(section, key, value, kPath), 0) << before;
    EXPECT_EQ(read(kPath), after) << "setting the same again changes nothing";
  }
}

TEST_F(ProfileTest, RefusesWhatWouldNotBeFoundAgain) {
  const char* const refused[][3] = {
      {nullptr, "", "v"}, {nullptr, "[k", "v"}, {nullptr, "k\nm", "v"}, {"a]b", "k", "v"},
      {"a\nb", "k", "v"}, {"a", "k", "v\nm=w"}, {"a", "k", nullptr},    {"a", nullptr, "v"}};
  const Snapshot before = snapshot();
  for (const auto& [section, key, value] : refused) {
    EXPECT_EQ(PRO_SetStr(section, key, value, kPath), -1);
  }
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(ProfileTest, SetsAllItemsOrNone) {
  ProfileItem items[] = {{"port", "21", 7}, {"", "long", 0}, {"new", "", -1}, {"port", "22", 0}};
  memcpy(items[1].key, "key_of_twenty_four_chars", sizeof items[1].key);
  write(kPath, "[n]\nport=1\nkeep=2\n");
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, 4, kPath), 0);
  items[0].value = "23";
  items[3].value = nullptr;
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, 4, kPath), -1);
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, -1, kPath), -1);
  EXPECT_EQ(read(kPath), "[n]\nport=22\nkeep=2\nkey_of_twenty_four_chars=long\nnew=\n");
}

TEST_F(ProfileTest, RemovesEverySectionOfTheName) {
  write(kPath, "top=1\n[a]\nk=1\n\n[b]\na=[a]\n [a]\n[A ] x\nk=3\n[broken\nk=2\n[ab]\n[a]");
  EXPECT_EQ(PRO_DelSect("a", kPath), 0);
  EXPECT_EQ(read(kPath), "top=1\n[b]\na=[a]\n [a]\n[broken\nk=2\n[ab]\n");
  EXPECT_EQ(PRO_DelSect("a", "/etc/none.conf"), -1);
}

/* ---- Replacing the file ---- */

int set_new(const std::string& path) {
  return PRO_SetStr(nullptr, "k", "new", path.c_str());
}

TEST_F(ProfileTest, GivesTheNewFileItsOwnerAndModeBehindTheLinks) {
  mount_volume(2);
  const std::string real = "/harddisk/volume_2/conf/real.conf";
  fs::create_symlink("second", "/etc/first");
  fs::create_symlink(".." + real, "/etc/second");
  write(real, "k=old\n");
  ASSERT_EQ(chown(real.c_str(), 2000, 501) + chmod(real.c_str(), 02640), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(set_new("/etc/first"), 0);
  EXPECT_EQ(changes(before), Strings({"~" + real})) << "the links stay";
  EXPECT_EQ(read(real), "k=new\n");
  EXPECT_EQ(owner(real), "2000:501");
  EXPECT_EQ(mode(real), 02640U);
}

TEST_F(ProfileTest, MakesAMissingFileForAllToReadWhateverTheMask) {
  fs::create_symlink("sample.conf", "/etc/first");
  (void)umask(077);
  EXPECT_EQ(PRO_SetInt("a", "n", INT_MIN, "/etc/first"), 0);
  EXPECT_EQ(read(kPath), "[a]\nn=-2147483648\n");
  EXPECT_EQ(mode(kPath), 0644U);
}

TEST_F(ProfileTest, RefusesAnotherUsersFileAndWhatIsNoFile) {
  write("/tmp/x", "k=old\n");
  fs::permissions("/tmp", fs::perms::all);
  fs::create_symlink("loop", "/etc/loop");
  ASSERT_EQ(mkfifo("/etc/pipe", 0644), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(in_process([] { return setuid(2000) == 0 && set_new("/tmp/x") == -1; }), 1U);
  for (const char* path : {"", "/etc", "/etc/", "/etc/loop", "/etc/pipe", "/none/x", "/dev/null"}) {
    EXPECT_EQ(set_new(path), -1) << path;
  }
  EXPECT_EQ(changes(before), Strings());
}

}  // namespace
