// fileshare share: what it prints, refuses and leaves.
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "tests/device_test.h"

namespace {

using Json = nlohmann::json;

class FileshareShareTest : public DeviceTest {
 protected:
  static Outcome share(Strings arguments) {
    arguments.insert(arguments.begin(), {"fileshare", "share"});
    return run(arguments);
  }

  static void expect_error(const Outcome& outcome, int status, const std::string& error) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "fileshare: " + error + "\n");
  }
};

TEST_F(FileshareShareTest, ListFitsTheTerminalAndTellsWritersFromReaders) {
  const Outcome table = share({"list"});
  EXPECT_EQ(table.status, 0);
  EXPECT_EQ(table.out,
            "NAME      VOLUME  PATH        COMMENT              WRITERS   READERS\n"
            "DISK 1         1  /public/    Public folder        everyone\n"
            "Music          1  /Music/     Songs of the family  family    everyone\n"
            "Projects       1  /Projects/                       staff\n");
  const Json list = Json::parse(share({"list", "--json"}).out);
  ASSERT_EQ(list.size(), 3u);
  EXPECT_EQ(list[1], Json::parse(R"({"name": "Music", "volume": 1, "path": "/Music/",
      "comment": "Songs of the family", "writers": ["administrators", "family"],
      "readers": ["everyone"]})"));
}

TEST_F(FileshareShareTest, ShareIsMadeGrantedShownAndDeleted) {
  EXPECT_EQ(share({"add", "Films", "/Films and more", "--comment", "All of them"}).status, 0);
  EXPECT_EQ(share({"grant", "family", "Films"}).status, 0);
  EXPECT_EQ(share({"grant", "staff", "Films", "--read-only"}).status, 0);
  EXPECT_EQ(share({"rename", "Films", "Movies"}).status, 0);
  EXPECT_EQ(share({"update", "Movies", "--comment", "Some"}).status, 0);
  EXPECT_EQ(Json::parse(share({"show", "Movies", "--json"}).out),
            Json::parse(R"({"name": "Movies", "volume": 1, "path": "/Films and more/",
      "comment": "Some", "writers": ["administrators", "family"], "readers": ["staff"]})"));
  EXPECT_EQ(share({"revoke", "staff", "Movies"}).status, 0);
  EXPECT_EQ(Json::parse(share({"show", "Movies", "--json"}).out)["readers"], Json::array());
  EXPECT_EQ(share({"delete", "Movies"}).status, 0);
  expect_error(share({"show", "Movies"}), 1,
               "can not show share \"Movies\": there is no share of this name (code 49)");
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Films and more"));
}

TEST_F(FileshareShareTest, NamesAndFoldersThatWouldBreakAFileAreRefused) {
  const Snapshot before = snapshot();
  const Strings commands[] = {
      {"add", "a:b", "/x"},
      {"add", "a=b", "/x"},
      {"add", "a]b", "/x"},
      {"add", "global", "/x"},
      {"add", "Homes", "/x"},
      {"rename", "Music", "PRINTERS"},
      {"add", "a", "x"},
      {"add", "a", "/x/../../etc"},
      {"add", "a", "/.."},
      {"add", "a", "/x:y"},
      {"add", "a", "/x\"y"},
      {"add", "a", "/x'y"},
      {"add", "a", "/x$y"},
      {"add", "a", "/x\\y"},
      {"add", "a", "/x`y"},
      {"add", "a", "/x\ny"},
      {"update", "Music", "--folder", "/x\"y"},
      {"update", "Music", "--comment", "a:b"},
      {"update", "Music", "--comment", "a\nb"},
      {"add", "a", "/x", "--volume", "6"},
      {"grant", "a,b", "Music"},
  };
  for (const Strings& command : commands) {
    const Outcome outcome = share(command);
    EXPECT_EQ(outcome.status, 2) << command.back();
    EXPECT_NE(outcome.error, "");
  }
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(FileshareShareTest, FoldersAreNotRemovedWhenOneOfThemWouldTakeMoreWithIt) {
  const std::string registry = read("/etc/share.info");
  const char* const paths[] = {"/", "//", "/./", "/a b/", "/a;b/", "/*/", "/a/../../", "/a$b/"};
  for (const char* path : paths) {
    write("/etc/share.info", registry + "bad=0:1::" + path + "\n");
    const Snapshot before = snapshot();
    const Outcome outcome = share({"delete-all", "--folders", "--yes"});
    EXPECT_EQ(outcome.status, 2) << path;
    EXPECT_EQ(outcome.error.find("fileshare: share \"bad\": "), 0u) << outcome.error;
    EXPECT_EQ(changes(before), Strings()) << path;
  }
  write("/etc/share.info", registry);
  EXPECT_EQ(share({"delete-all", "--folders"}).status, 2); /* not asked, not sure */
  EXPECT_TRUE(exists("/harddisk/volume_1/data/Music"));
  EXPECT_EQ(share({"delete-all", "--folders", "--yes"}).status, 0);
  EXPECT_EQ(read("/etc/share.info"), "");
  EXPECT_FALSE(exists("/harddisk/volume_1/data/Music"));
}

TEST_F(FileshareShareTest, ErrorsTellTheReasonOfThisOperation) {
  const struct {
    Strings arguments;
    const char* error;
  } cases[] = {
      {{"add", "music", "/x"},
       "can not add share \"music\": a share of this name exists (code 48)"},
      {{"add", "x", "/Music"}, "can not add share \"x\": the folder is shared already (code 56)"},
      {{"update", "none"},
       "can not update share \"none\": there is no share of this name (code 49)"},
      {{"show", "MUSIC"},
       "can not show share \"MUSIC\": the share's name is written in another letter case (code "
       "47)"},
      {{"rename", "Music", "Projects"},
       "can not rename share \"Music\": a share of the new name exists, or another change is going "
       "on (code 48)"},
      {{"grant", "family", "Music"},
       "can not let group \"family\" use share \"Music\": it may use the share already (code 55)"},
      {{"grant", "strangers", "Music"},
       "can not let group \"strangers\" use share \"Music\": there is no group of this name"},
      {{"revoke", "family", "none"},
       "can not keep group \"family\" from share \"none\": there is no share of this name (code "
       "49)"},
  };
  for (const auto& c : cases) expect_error(share(c.arguments), 1, c.error);
}

}  // namespace
