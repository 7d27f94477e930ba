// The photo album: its settings, its link, its thumbnails, and paths with dots.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "filesharing/album.h"
#include "tests/device_test.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kLink[] = "/etc/photo_album";

class AlbumTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    write("/etc/share.info", "Photos=0:1:c:/pics/:administrators:7\nroot=0:2:c:/:staff:5\n");
  }
  static void set_album(const std::string& enabled, const std::string& path) {
    write(kSettings, "[photo_album]\nalbum_enable=" + enabled + "\nalbum_path=" + path +
                         "\nalbum_back_music=\n");
  }
  static std::string link() {
    char target[300] = "";
    return readlink(kLink, target, sizeof target - 1) < 0 ? "none" : target;
  }
};

TEST_F(AlbumTest, SettingsAreSavedAndReadBack) {
  PhotoAlbumConf saved{};
  saved.enabled = 5;
  std::memset(saved.path, 'p', sizeof saved.path);  // a page filled it to the end
  std::strcpy(saved.back_music, "/Music/a.mp3");
  write(kSettings, "[network]\nport=80\n");
  EXPECT_EQ(SavePhotoAlbumConf(&saved), 0);
  EXPECT_EQ(read(kSettings), "[network]\nport=80\n[photo_album]\nalbum_enable=yes\nalbum_path=" +
                                 std::string(256, 'p') + "\nalbum_back_music=/Music/a.mp3\n");
  PhotoAlbumConf conf{};
  EXPECT_EQ(ReadPhotoAlbumConf(&conf), 0);
  EXPECT_EQ(conf.enabled, 1);
  EXPECT_EQ(conf.path, std::string(255, 'p'));
  EXPECT_STREQ(conf.back_music, "/Music/a.mp3");
}

TEST_F(AlbumTest, OnlyAWholeYesIsOnAndTwoKeysMustBeThere) {
  PhotoAlbumConf conf{};
  for (const std::string enabled : {"Yes", "yes1"}) {
    set_album(enabled, "/Photos");
    conf.enabled = 7;
    EXPECT_EQ(ReadPhotoAlbumConf(&conf), 0);
    EXPECT_EQ(conf.enabled, 0) << enabled;
  }
  write(kSettings, "[photo_album]\nalbum_path=/a\nalbum_back_music=\n");
  EXPECT_EQ(ReadPhotoAlbumConf(&conf), 0);
  write(kSettings, "[photo_album]\nalbum_enable=yes\nalbum_path=/a\n");
  EXPECT_EQ(ReadPhotoAlbumConf(&conf), -1);
  write(kSettings, "[photo_album]\nalbum_enable=yes\nalbum_back_music=\n");
  EXPECT_EQ(ReadPhotoAlbumConf(&conf), -1);
}

TEST_F(AlbumTest, AlbumOfAShareThatGoesAwayIsSwitchedOff) {
  struct Case {
    const char* path;
    int volume;
    bool stays;
  };
  const Case cases[] = {{"/Photos", 2, true},     {"/photos/x", 1, false},
                        {"/Gone", 2, false},      {"Photos", 1, true},
                        {"x/Photos/y", 1, false}, {"/Photos and more than twenty", 2, false}};
  for (const Case& c : cases) {
    set_album("no", c.path);
    const std::string off = read(kSettings);
    set_album("yes", c.path);
    CheckPhotoAlbum(c.volume);
    EXPECT_EQ(read(kSettings) == off, !c.stays) << c.path;
  }
}

TEST_F(AlbumTest, LinkLeadsToTheFolder) {
  struct Case {
    int enabled;
    const char* path;
    const char* target;
  };
  const Case cases[] = {
      {1, "/Photos/", "/harddisk/volume_1/data/pics/"},
      {1, "/Photos/2024/may", "/harddisk/volume_1/data/pics/2024/may"},
      {1, "/root//x", "/harddisk/volume_2/data//x"},
      {0, "/Photos", "none"},
      {1, "/Gone", "none"},
  };
  for (const Case& c : cases) {
    unlink(kLink);
    ASSERT_EQ(symlink("/old", kLink), 0);
    PhotoAlbumConf conf{};
    conf.enabled = c.enabled;
    std::strcpy(conf.path, c.path);
    ResetPhotoAlbum(&conf);
    EXPECT_EQ(link(), c.target) << c.path;
  }
}

TEST_F(AlbumTest, ThumbnailsOfPicturesThatAreGoneAreRemoved) {
  ASSERT_EQ(mkdir("/tmp/a", 0755), 0);
  ASSERT_EQ(mkdir("/tmp/a/.Thumb_DB", 0755), 0);
  write("/tmp/a/here.jpg", "");
  write("/tmp/a/MED_x", "");
  for (const std::string name :
       {"Thumbnail_MED_here.jpg", "Thumbnail_MED_gone.jpg", "Thumbnail_here.jpg",
        "Thumbnail_gone.jpg", "Description_here.jpg", "Description_gone.jpg", "Thumbnail_MED_x",
        "gone.jpg", "Thumbnail_"}) {
    write("/tmp/a/.Thumb_DB/" + name, "");
  }
  const Snapshot before = snapshot();
  EXPECT_EQ(CheckAlbumThumbFiles("/tmp/a"), 0);
  EXPECT_EQ(
      changes(before),
      Strings({"-/tmp/a/.Thumb_DB/Description_gone.jpg", "-/tmp/a/.Thumb_DB/Thumbnail_MED_gone.jpg",
               "-/tmp/a/.Thumb_DB/Thumbnail_MED_x", "-/tmp/a/.Thumb_DB/Thumbnail_gone.jpg"}));
}

TEST(DotSegmentsTest, EachStepRunsOnceOverTheWholePath) {
  const std::pair<const char*, const char*> cases[] = {
      {"///", "/"},           {"././a", "a"},
      {"a/././b/.", "a/b/."}, {"/../c", "c"},
      {"../../c", "c"},       {"a/../../b", "b"},
      {"/a/b/../../c", "/c"}, {"/a/b/../..", ""},
      {"a/..", "a/.."},       {"/..", "/.."},
      {"a/...", "a/..."},     {"/harddisk/volume_1/data/a//./b/../", "/harddisk/volume_1/data/a/"},
  };
  for (const auto& [path, expected] : cases) {
    std::string buffer(path);
    de_dotdot(buffer.data());
    EXPECT_STREQ(buffer.c_str(), expected) << path;
  }
}

}  // namespace
