// fileshare share: what it prints, refuses and leaves.
#include "tests/fileshare_run.h"

namespace {

class FileshareShareTest : public FileshareRun {};

TEST_F(FileshareShareTest, ShareIsMadeGrantedListedAndDeleted) {
  expect({"share", "add", "Films", "/Films and more", "--comment", "All of them"});
  expect({"share", "grant", "family", "Films"});
  expect({"share", "grant", "staff", "Films", "--read-only"});
  expect({"share", "rename", "Films", "Movies"});
  expect({"share", "update", "Movies", "--comment", "Some"});
  expect({"share", "list"},
         "NAME      VOLUME  PATH              COMMENT              WRITERS   READERS\n"
         "DISK 1         1  /public/          Public folder        everyone\n"
         "Music          1  /Music/           Songs of the family  family    everyone\n"
         "Projects       1  /Projects/                             staff\n"
         "Movies         1  /Films and more/  Some                 family    staff\n");
  expect({"share", "revoke", "staff", "Movies"});
  EXPECT_EQ(shown({"share", "show", "Movies"}),
            Json::parse(R"({"name": "Movies", "volume": 1, "path": "/Films and more/",
      "comment": "Some", "writers": ["administrators", "family"], "readers": []})"));
  expect({"share", "delete", "Movies"});
  EXPECT_EQ(shown({"share", "list"}).size(), 3u);
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Films and more"));
}

TEST_F(FileshareShareTest, RefusalsNameTheArgumentOrTheReasonOfThisOperation) {
  expect_refused({
      {{"share", "add", "a]b", "/x"}, 2, "NAME: "},
      {{"share", "rename", "Music", "PRINTERS"}, 2, "NEW-NAME: "},
      {{"share", "add", "a", "x"}, 2, "FOLDER: "},
      {{"share", "add", "a", "/x/../../etc"}, 2, "FOLDER: "},
      {{"share", "update", "Music", "--folder", "/x\"y"}, 2, "--folder: "},
      {{"share", "update", "Music", "--comment", "a:b"}, 2, "--comment: "},
      {{"share", "grant", "a,b", "Music"}, 2, "GROUP: "},
      {{"share", "add", "x", "/Music"}, 1, "can not add share \"x\": the folder is shared already"},
      {{"share", "show", "MUSIC"}, 1, "can not show share \"MUSIC\": the share's name is written"},
      {{"share", "revoke", "family", "none"}, 1, "can not keep group \"family\" from share \"none"},
  });
  for (const char sign : std::string(":'$\\`\n")) {
    expect_refused({{{"share", "add", "a", std::string("/x") + sign}, 2, "FOLDER: "}});
  }
}

TEST_F(FileshareShareTest, FoldersAreNotRemovedWhenOneOfThemWouldTakeMoreWithIt) {
  const std::string registry = read("/etc/share.info");
  for (const char* path : {"/", "//", "/./", "/a b/", "/a;b/", "/*/", "/a/../../", "/a$b/"}) {
    write("/etc/share.info", registry + "bad=0:1::" + path + "\n");
    expect_refused({{{"share", "delete-all", "--folders", "--yes"}, 2, "share \"bad\": "}});
  }
  write("/etc/share.info", registry);
  expect_refused({{{"share", "delete-all", "--folders"}, 2, ""}}); /* not asked, not sure */
  expect({"share", "delete-all", "--folders", "--yes"});
  EXPECT_EQ(read("/etc/share.info"), "");
  EXPECT_FALSE(exists("/harddisk/volume_1/data/Music"));
}

}  // namespace
