/* Paths spelled as the disk spells them. */
#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "filesharing/shares.h"
#include "tests/device_test.h"

namespace {

class PathCaseTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    for (const char* folder : {"/tmp/Box", "/tmp/Box/Zwölf Ü", "/tmp/Box/Music", "/tmp/Box/..."}) {
      ASSERT_EQ(mkdir(folder, 0755), 0) << folder;
    }
    write("/tmp/Box/Music/Song", "");
  }
};

struct Path {
  std::string given;
  int result;
  std::string rewritten;
};

using PathCases = std::vector<Path>;

/* Gives the function a block of exactly the text's size, so that a byte too many is noticed. */
template <class Rewrite>
void expect_paths(const PathCases& cases, Rewrite rewrite) {
  for (const Path& path : cases) {
    char* text = strdup(path.given.c_str());
    EXPECT_EQ(rewrite(text), path.result) << path.given;
    EXPECT_EQ(text, path.rewritten) << path.given;
    free(text);
  }
}

TEST_F(PathCaseTest, EachComponentThatExistsIsSpelledAsOnDisk) {
  expect_paths({{"/tmp/box/music/new", 0, "/tmp/Box/Music/new"},
                {"/TMP/BOX", 0, "/tmp/Box"},
                {"/tmp/Box/zWÖLF ü/", 0, "/tmp/Box/Zwölf Ü/"},
                {"/tmp/box/new/music", 0, "/tmp/Box/new/music"}, /* not looked up any more */
                {"/tmp/box/music/SONG/x", 0, "/tmp/Box/Music/Song/x"},
                {"/tmp/Box/Music", -1, "/tmp/Box/Music"},
                {"//tmp///Box//Music//", -1, "/tmp/Box/Music/"},
                {"/tmp//new//x//", -1, "/tmp/new//x//"}, /* as given from the missing one on */
                {"/tmp/Box/../box", -1, "/tmp/Box/../box"},
                {"/tmp/box/.../x", 0, "/tmp/Box/.../x"},
                {"/tmp/Bo", -1, "/tmp/Bo"},
                {"/", -1, "/"},
                {"///", -1, "/"},
                {"x/TMP", 0, "/tmp"},
                {"tmp", -1, "tmp"},
                {"\n/TMP", -1, "\n/TMP"},
                {"", -1, ""}},
               trans_dir);
  EXPECT_EQ(trans_dir(nullptr), -1);
}

TEST_F(PathCaseTest, PrefixIsTakenAsItIs) {
  const auto behind = [](const char* prefix) {
    return [prefix](char* path) { return trans_dir_with_prefix(prefix, path); };
  };
  expect_paths({{"/tmp/box/music", 0, "/tmp/Box/Music"},
                {"/TMP/box", -1, "/TMP/box"},
                {"/tmp", -1, "/tmp"},
                {"", -1, ""}},
               behind("/tmp"));
  /* The prefix is not corrected, and nothing is below it then. */
  expect_paths({{"/TMP//box", -1, "/TMP/box"}}, behind("/TMP"));
  expect_paths({{"/tmp/box", -1, "/tmp/box"}}, behind("/tmp/"));
  expect_paths({{"/TMP//box/x", 0, "/tmp/Box/x"}}, behind(nullptr));
  /* The walk starts behind as many characters as the prefix has, wherever that is. */
  expect_paths({{"/y/tmp/box", 0, "/tmp/Box"}}, behind("/tmp"));
  EXPECT_EQ(trans_dir_with_prefix("/tmp", nullptr), -1);
}

TEST_F(PathCaseTest, LastComponentAlone) {
  ASSERT_EQ(chdir("/tmp/Box"), 0);
  expect_paths({{"/tmp/Box/MUSIC", 1, "/tmp/Box/Music"},
                {"/tmp/box/MUSIC", 0, "/tmp/box/MUSIC"},
                {"/tmp/Box/Music", 0, "/tmp/Box/Music"},
                {"/tmp/Box//MUSIC//", 1, "/tmp/Box/Music"},
                {"/TMP", 1, "/tmp"},
                {"//TMP", 1, "/tmp"},
                {"MUSIC", 1, "Music"},
                {"MUSIC/", 1, "Music"},
                {"Music/song", 1, "Music/Song"},
                {"none", 0, "none"},
                {"/tmp/..", 0, "/tmp/.."},
                {"/", 0, "/"},
                {"//", 0, "/"},
                {"", -1, ""}},
               simple_trans_dir);
  EXPECT_EQ(simple_trans_dir(nullptr), -1);
  ASSERT_EQ(chdir("/"), 0);
}

TEST_F(PathCaseTest, NameOfOneEntry) {
  const auto in_box = [](char* name) { return trans_one_item("/tmp/Box", name); };
  expect_paths({{"mUSIC", 0, "Music"}, {"musi", -1, "musi"}, {"..", -1, ".."}, {"", -1, ""}},
               in_box);
  char name[] = "music";
  EXPECT_EQ(trans_one_item("/none", name), -1);
  EXPECT_EQ(trans_one_item("", name), -1);
  EXPECT_EQ(trans_one_item(nullptr, name), -1);
  EXPECT_EQ(trans_one_item("/tmp", nullptr), -1);

  char untouched[] = "untouched";
  char* stored = untouched;
  EXPECT_EQ(case_dir("/tmp/Box/Music/Song", "x", &stored), 0); /* no folder */
  EXPECT_EQ(case_dir("/tmp/Box", ".", &stored), 0);
  EXPECT_EQ(stored, untouched);
  ASSERT_EQ(case_dir("/tmp/Box", "MUSIC", &stored), 1);
  EXPECT_STREQ(stored, "Music");
  free(stored);
}

/* Even a name that is there exactly as given loses against one that is listed before it. */
TEST_F(PathCaseTest, FirstListedOfSeveralSpellings) {
  const Strings spellings = {"photo", "Photo", "PHOTO"};
  for (const std::string& spelling : spellings) {
    write("/tmp/Box/" + spelling, "");
  }
  std::string first;
  DIR* folder = opendir("/tmp/Box");
  ASSERT_NE(folder, nullptr);
  for (const dirent* entry = readdir(folder); entry != nullptr; entry = readdir(folder)) {
    if (first.empty() && strcasecmp(entry->d_name, "photo") == 0) first = entry->d_name;
  }
  closedir(folder);
  for (const std::string& spelling : spellings) {
    expect_paths({{"/tmp/Box/" + spelling, spelling == first ? -1 : 0, "/tmp/Box/" + first}},
                 trans_dir);
  }
}

TEST_F(PathCaseTest, ComponentBehindASlash) {
  const char path[] = "/Zwölf/b";
  char* name = getname(path);
  EXPECT_STREQ(name, "Zwölf");
  free(name);
  name = getname(path + sizeof path - 3);
  EXPECT_STREQ(name, "b");
  free(name);
  name = getname("/");
  EXPECT_STREQ(name, "");
  free(name);
  EXPECT_EQ(getname(""), nullptr);
  EXPECT_EQ(getname(nullptr), nullptr);
}

}  // namespace
