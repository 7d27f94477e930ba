// The verbs of fileshare for the photo album, its users and their folders.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/fileshare_run.h"

namespace {

constexpr char kUsers[] = "/etc/album_user.conf";

class FileshareAlbumTest : public FileshareRun {
 protected:
  static Outcome album(Strings arguments) {
    arguments.insert(arguments.begin(), "album");
    return fileshare(arguments);
  }

  static Json shown(Strings arguments) {
    arguments.insert(arguments.begin(), "album");
    return FileshareRun::shown(arguments);
  }
};

TEST_F(FileshareAlbumTest, AlbumIsShownSetAndLinked) {
  ASSERT_EQ(mkdir("/harddisk/volume_1/data/public/may", 0755), 0);
  EXPECT_EQ(album({"set", "--enabled", "yes", "--folder", "/DISK 1/may"}).error, "");
  EXPECT_EQ(shown({"show"}),
            Json::parse(R"({"enabled": true, "folder": "/DISK 1/may", "music": ""})"));
  EXPECT_EQ(album({"apply"}).error, "");
  EXPECT_TRUE(exists("/etc/photo_album"));
  EXPECT_EQ(run({"readlink", "/etc/photo_album"}).out, "/harddisk/volume_1/data/public/may\n");
  EXPECT_EQ(album({"set", "--enabled", "no"}).error, "");
  EXPECT_EQ(album({"apply"}).error, "");
  EXPECT_FALSE(exists("/etc/photo_album"));
}

TEST_F(FileshareAlbumTest, AlbumWhoseShareIsGoneIsNotAppliedNorSwitchedOn) {
  EXPECT_EQ(album({"set", "--enabled", "yes"}).error, "");
  write("/etc/share.info", "");
  EXPECT_EQ(album({"apply"}).status, 1);
  EXPECT_EQ(album({"set", "--enabled", "yes"}).error,
            "fileshare: can not save the settings of the album: folder: there is no such share\n");
  EXPECT_EQ(album({"set", "--enabled", "no"}).error, "");
  EXPECT_EQ(album({"apply"}).error, "") << "off and unlinked";
}

TEST_F(FileshareAlbumTest, RefusedTextsChangeNothing) {
  struct Case {
    Strings arguments;
    int status;
    std::string error; /* behind "fileshare: "; its beginning */
  };
  const std::string save = "can not save the settings of the album: folder: there is no such ";
  const std::string add = "can not add folder ";
  const Case cases[] = {
      {{"set", "--folder", "/DISK 1/nowhere"}, 1, save + "folder\n"},
      {{"set", "--folder", "/Nobody"}, 1, save + "share\n"},
      {{"set", "--folder", "//DISK 1"}, 2, "--folder: a folder can not contain \"//\"\n"},
      {{"set", "--folder", "/DISK 1/../../conf"}, 2, "--folder: "},
      {{"set", "--music", "a\nalbum_enable=yes"}, 2, "--music: "},
      {{"user", "add", "Alice"}, 1, "can not add album user \"Alice\": a user of this name exists"},
      {{"user", "add", "x]"}, 2, "NAME: "},
      {{"user", "add", "x", "--text1", "a:b"}, 2, "--text1: text 1 can not contain \":\"\n"},
      {{"user", "add", "x", "--text2", std::string(16, 't')}, 2, "--text2: "},
      {{"user", "update", "alice", "--name", "VISITOR"},
       1,
       "can not update album user \"alice\": "},
      {{"user", "update", "x", "--text1", "a"},
       1,
       "can not update album user \"x\": the album has"},
      {{"user", "delete", "x"}, 1, "can not delete album user \"x\": the album has no user"},
      {{"folder", "add", "x", "may"},
       1,
       add + "\"may\" of album user \"x\": the album has no user"},
      {{"folder", "add", "alice", "/garden", "--right", "2"}, 2, "FOLDER: a folder of the album "},
      {{"folder", "add", "alice", "a/../.."}, 2, "FOLDER: "},
      {{"folder", "add", "alice", "a\n[bob]"}, 2, "FOLDER: "},
      {{"folder", "add", "alice", "a", "--right", "-1"}, 2, "--right: "},
      {{"folder", "remove", "alice", "may"}, 1, "can not remove folder \"may\" of album user "},
      {{"folder", "prune", "/nowhere"}, 1, "can not prune the folders of the album's users: "},
      {{"folder", "prune", "/../.."}, 2, "SUB: "},
  };
  const Snapshot before = snapshot();
  for (const Case& one : cases) {
    const Outcome outcome = album(one.arguments);
    const std::string error = "fileshare: " + one.error;
    EXPECT_EQ(outcome.status, one.status) << outcome.error;
    EXPECT_EQ(outcome.error.substr(0, error.size()), error);
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(FileshareAlbumTest, WholeLifeOfAUser) {
  EXPECT_EQ(album({"user", "add", "Carl", "--text1", "Carl C", "--number2", "-3"}).error, "");
  EXPECT_EQ(album({"folder", "add", "carl", "may", "--right", "2"}).error, "");
  EXPECT_EQ(album({"folder", "add", "carl", "may"}).error,
            "fileshare: can not add folder \"may\" of album user \"carl\": it is there, with right "
            "2\n");
  EXPECT_EQ(album({"folder", "add", "carl", "a=b"}).error, "");
  EXPECT_EQ(album({"user", "update", "CARL", "--text2", "rose", "--name", "Karl"}).error, "");
  EXPECT_EQ(shown({"user", "show", "karl"}), Json::parse(R"({"name": "karl", "text1": "Carl C",
      "text2": "rose", "number1": 0, "number2": -3, "folders": ["may", "a=b"]})"));
  EXPECT_EQ(shown({"user", "list"}).back()["name"], "Karl");
  EXPECT_EQ(album({"folder", "remove", "karl", "a=b"}).error, "");
  EXPECT_EQ(shown({"folder", "list", "karl"}), Json::parse(R"([{"folder": "may", "right": 2}])"));
  EXPECT_EQ(album({"user", "delete", "KARL"}).error, "");
  EXPECT_EQ(album({"user", "show", "karl"}).status, 1);
}

TEST_F(FileshareAlbumTest, PruningDropsTheFoldersThatAreGone) {
  ASSERT_EQ(mkdir("/harddisk/volume_1/data/public/may", 0755), 0);
  write(kUsers, "[a]\ninformation=:::\nalbum=1:may\nalbum=1:june\n");
  EXPECT_EQ(album({"folder", "prune"}).error, "");
  EXPECT_EQ(read(kUsers), "[a]\ninformation=:::\nalbum=1:may\n");
  unlink(kUsers);
  EXPECT_EQ(album({"folder", "prune"}).status, 1);
}

TEST_F(FileshareAlbumTest, FailuresThatTheLibraryKeepsToItselfAreTold) {
  unlink(kUsers);
  EXPECT_EQ(shown({"user", "list"}), Json::array()) << "no file yet, no users";
  ASSERT_EQ(mkdir(kUsers, 0755), 0);
  EXPECT_EQ(album({"user", "add", "carl"}).error,
            "fileshare: can not add album user \"carl\": the file of the album's users can not be "
            "written\n");
  rmdir(kUsers);
  write(kUsers, "[carl]\ninformation=a:b\n");
  EXPECT_EQ(album({"user", "list"}).status, 1);
  EXPECT_EQ(album({"user", "show", "carl"}).status, 1);
}

}  // namespace
