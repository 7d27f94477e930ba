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

struct Path {
  std::string given;
  int result;
  std::string rewritten;
};

class PathCaseTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    for (const char* folder : {"/tmp/Box", "/tmp/Box/Zwölf Ü", "/tmp/Box/Music", "/tmp/Box/..."}) {
      ASSERT_EQ(mkdir(folder, 0755), 0) << folder;
    }
    write("/tmp/Box/Music/Song", "");
  }

  /* Gives the function a block of exactly the text's size, so that a byte too many is noticed. */
  template <class Rewrite>
  static void expect_paths(Rewrite rewrite, const std::vector<Path>& cases) {
    for (const Path& path : cases) {
      char* text = strdup(path.given.c_str());
      EXPECT_EQ(rewrite(text), path.result) << path.given;
      EXPECT_EQ(text, path.rewritten) << path.given;
      free(text);
    }
  }
};

TEST_F(PathCaseTest, EachComponentThatExistsIsSpelledAsOnDisk) {
  expect_paths(trans_dir, {{"/tmp/box/music/new", 0, "/tmp/Box/Music/new"},
                           {"/tmp/Box/zWÖLF ü/", 0, "/tmp/Box/Zwölf Ü/"},
                           {"/tmp/box/new/music", 0, "/tmp/Box/new/music"}, /* not looked up */
                           {"/tmp/box/music/SONG/x", 0, "/tmp/Box/Music/Song/x"},
                           {"//tmp///Box//Music//", -1, "/tmp/Box/Music/"},
                           {"/tmp//new//x//", -1, "/tmp/new//x//"},
                           {"/tmp/Box/../box", -1, "/tmp/Box/../box"},
                           {"/tmp/box/.../x", 0, "/tmp/Box/.../x"},
                           {"///", -1, "/"},
                           {"x/TMP", 0, "/tmp"},
                           {"\n/TMP", -1, "\n/TMP"}});
}

TEST_F(PathCaseTest, PrefixIsTakenAsItIs) {
  const auto below = [](const char* prefix) {
    return [prefix](char* path) { return trans_dir_with_prefix(prefix, path); };
  };
  expect_paths(below("/tmp"),
               {{"/tmp/box/music", 0, "/tmp/Box/Music"},
                {"/TMP/box", -1, "/TMP/box"},
                {"/y/tmp/box", 0, "/tmp/Box"}, /* four characters, whatever they are */
                {"", -1, ""}});
  expect_paths(below("/TMP"), {{"/TMP//box", -1, "/TMP/box"}}); /* nothing is below it then */
  expect_paths(below(nullptr), {{"/TMP//box/x", 0, "/tmp/Box/x"}});
}

TEST_F(PathCaseTest, LastComponentAlone) {
  ASSERT_EQ(chdir("/tmp/Box"), 0);
  expect_paths(simple_trans_dir, {{"/tmp/Box/MUSIC", 1, "/tmp/Box/Music"},
                                  {"/tmp/box/MUSIC", 0, "/tmp/box/MUSIC"},
                                  {"/tmp/Box//MUSIC//", 1, "/tmp/Box/Music"},
                                  {"//TMP", 1, "/tmp"},
                                  {"MUSIC/", 1, "Music"},
                                  {"/tmp/..", 0, "/tmp/.."},
                                  {"//", 0, "/"}});
  ASSERT_EQ(chdir("/"), 0);
}

/* Even a name that is there exactly as given loses against one that is listed before it. */
TEST_F(PathCaseTest, FirstListedOfSeveralSpellings) {
  const Strings spellings = {"photo", "Photo", "PHOTO"};
  for (const std::string& spelling : spellings) write("/tmp/Box/" + spelling, "");
  std::string first;
  DIR* folder = opendir("/tmp/Box");
  while (strcasecmp(first.c_str(), "photo") != 0) first = readdir(folder)->d_name;
  closedir(folder);
  for (const std::string& spelling : spellings) {
    expect_paths(trans_dir,
                 {{"/tmp/Box/" + spelling, spelling == first ? -1 : 0, "/tmp/Box/" + first}});
  }
}

TEST_F(PathCaseTest, NameOfOneEntryAndComponentBehindASlash) {
  expect_paths([](char* name) { return trans_one_item("/tmp/Box", name); },
               {{"mUSIC", 0, "Music"}, {"musi", -1, "musi"}, {"..", -1, ".."}});
  char* stored = nullptr;
  EXPECT_EQ(case_dir("/tmp/Box/Music/Song", "x", &stored), 0); /* no folder */
  EXPECT_EQ(stored, nullptr);
  ASSERT_EQ(case_dir("/tmp/Box", "MUSIC", &stored), 1);
  EXPECT_STREQ(stored, "Music");
  free(stored);
  for (const auto& [path, expected] : {std::pair("/Zwölf/b", "Zwölf"), std::pair("/", "")}) {
    char* name = getname(path);
    EXPECT_STREQ(name, expected);
    free(name);
  }
}

}  // namespace
