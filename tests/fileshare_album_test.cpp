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

TEST_F(FileshareAlbumTest, AlbumIsSetLinkedAndNotSwitchedOnWhenItsShareIsGone) {
  ASSERT_EQ(mkdir("/harddisk/volume_1/data/public/may", 0755), 0);
  expect({"album", "set", "--enabled", "yes", "--folder", "/DISK 1/may"});
  EXPECT_EQ(shown({"show"}),
            Json::parse(R"({"enabled": true, "folder": "/DISK 1/may", "music": ""})"));
  expect({"album", "apply"});
  EXPECT_EQ(run({"readlink", "/etc/photo_album"}).out, "/harddisk/volume_1/data/public/may\n");
  write("/etc/share.info", "");
  EXPECT_EQ(album({"apply"}).status, 1);
  EXPECT_EQ(album({"set", "--enabled", "yes"}).error,
            "fileshare: can not save the settings of the album: folder: there is no such share\n");
  expect({"album", "set", "--enabled", "no"});
  expect({"album", "apply"});
  EXPECT_FALSE(exists("/etc/photo_album"));
}

TEST_F(FileshareAlbumTest, RefusedTextsChangeNothing) {
  const std::string save = "can not save the settings of the album: folder: there is no such ";
  expect_refused({
      {{"album", "set", "--folder", "/DISK 1/nowhere"}, 1, save + "folder\n"},
      {{"album", "set", "--folder", "/Nobody"}, 1, save + "share\n"},
      {{"album", "set", "--folder", "//DISK 1"}, 2, "--folder: a folder can not contain \"//\"\n"},
      {{"album", "set", "--folder", "/DISK 1/../../conf"}, 2, "--folder: "},
      {{"album", "set", "--music", "a\nalbum_enable=yes"}, 2, "--music: "},
      {{"album", "user", "add", "Alice"},
       1,
       "can not add album user \"Alice\": a user of this name exists"},
      {{"album", "user", "add", "x]"}, 2, "NAME: "},
      {{"album", "user", "add", "x", "--text1", "a:b"}, 2, "--text1: "},
      {{"album", "user", "add", "x", "--text2", std::string(16, 't')}, 2, "--text2: "},
      {{"album", "user", "update", "alice", "--name", "VISITOR"},
       1,
       "can not update album user \"alice\": "},
      {{"album", "folder", "add", "alice", "/garden", "--right", "2"}, 2, "FOLDER: "},
      {{"album", "folder", "add", "alice", "a/../.."}, 2, "FOLDER: "},
      {{"album", "folder", "add", "alice", "a\n[bob]"}, 2, "FOLDER: "},
      {{"album", "folder", "remove", "alice", "may"},
       1,
       "can not remove folder \"may\" of album user "},
      {{"album", "folder", "prune", "/../.."}, 2, "SUB: "},
  });
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
  EXPECT_EQ(album({"folder", "prune"}).error, "") << "there is no such folder";
  EXPECT_EQ(shown({"folder", "list", "karl"}), Json::array());
  EXPECT_EQ(album({"user", "update", "karl", "--name", "\u00c4rzte"}).error, "");
  EXPECT_EQ(album({"user", "update", "\u00e4rzte", "--name", "\u00e4RZTE"}).error, "");
  EXPECT_EQ(shown({"user", "list"}).back()["name"], "\u00e4RZTE");
  EXPECT_EQ(album({"user", "update", "\u00c4rzte", "--name", "Karl"}).error, "");
  EXPECT_EQ(album({"user", "delete", "KARL"}).error, "");
  EXPECT_EQ(album({"user", "show", "karl"}).status, 1);
}

TEST_F(FileshareAlbumTest, FailuresThatTheLibraryKeepsToItselfAreTold) {
  unlink(kUsers);
  EXPECT_EQ(shown({"user", "list"}), Json::array()) << "no file yet, no users";
  ASSERT_EQ(mkdir(kUsers, 0755), 0);
  EXPECT_EQ(album({"user", "add", "carl"}).error,
            "fileshare: can not add album user \"carl\": the file of the album's users can not be "
            "written\n");
}

}  // namespace
