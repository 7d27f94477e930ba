/* References to folders, and the stopping and starting of the media servers around volumes. */
#include "filesharing/media.h"

#include <sys/mount.h>

#include <filesystem>

#include "tests/device_test.h"
#include "tests/recorded_signals.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kServerPid[] = "/var/run/media_server.pid";
constexpr char kDatabase[] = "/harddisk/volume_1/conf/media.db/media_server.db";
constexpr char kKillITunes[] = "/bin/killall [mt-daapd]";
constexpr char kKillBroadcast[] = "/bin/killall [ample]";

/* Music lies on volume 1, Pop, Popular and Films on volume 2. */
class MediaControlTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    mount_volume(2);
    write("/etc/share.info",
          "Music=0:1:c:/Music/:administrators:7\nPop=0:2:c:/a/Pop:administrators:7\n"
          "Popular=0:2:c:/b/:staff:7\nFilms=0:2:c:/b/:staff:7\n" +
              std::string(20, 'M') + "=0:1:c:/Music/:staff:7\n");
    write("/etc/win_share.info", "");
    fs::create_directories("/harddisk/volume_1/data/Music/Pop/Live");
    fs::create_directories("/harddisk/volume_2/data/a/Pop/Old");
    fs::create_directories("/harddisk/volume_2/data/b");
    fs::create_directories("/harddisk/volume_1/conf/media.db");
    write(kDatabase, "songs");
  }

  static std::string switches(bool itunes, bool broadcast, bool upnp, const std::string& rest) {
    const auto word = [](bool on) { return on ? "yes\n" : "no\n"; };
    return std::string("[media]\nitune=") + word(itunes) + "music_broad=" + word(broadcast) +
           "upnp_av=" + word(upnp) + rest;
  }
};

/* ---- References ---- */

TEST_F(MediaControlTest, ReferenceLeadsToShareAndFolder) {
  const std::string longest(20, 'M');
  struct Case {
    std::string reference;
    int result;
    std::string share, folder;
  };
  const Case cases[] = {
      {"/Music//", 0, "Music", ""},
      {"///Music/Pop///Live", 0, "Music", "/Pop/Live"},
      {"//Music//Pop/", 0, "Music", "/Pop/"},
      {"/music", 0, "music", ""},
      {"/Pop/Old", 0, "Pop", "/Old"}, /* the share's path has no slash at its end */
      {"Music/Pop", 0, "Pop", ""},    /* what stands before the first slash does not count */
      {"/" + longest, 0, longest, ""},
      {"/" + longest + "M", -1, "?", "?"}, /* not the one whose name it would be cut to */
      {"Music", -1, "?", "?"},
      {"/", -1, "?", "?"},
      {"/Music/Gone", -2, "?", "?"},
  };
  for (const Case& one : cases) {
    char share[32] = "?", folder[32] = "?";
    EXPECT_EQ(StripShareAndFolder(one.reference.c_str(), share, folder, 1), one.result);
    EXPECT_STREQ(share, "?") << "a check alone copies nothing out";
    EXPECT_EQ(StripShareAndFolder(one.reference.c_str(), share, folder, 0), one.result);
    EXPECT_EQ(share, one.share) << one.reference;
    EXPECT_EQ(folder, one.folder) << one.reference;
  }
}

TEST_F(MediaControlTest, FolderIsReadOnlyOnANtfsVolumeThatIsMountedSo) {
  const auto mount_at = [](const std::string& point, const char* source, unsigned long flags) {
    fs::create_directories(point);
    ASSERT_EQ(mount(source, point.c_str(), "tmpfs", flags, "size=4k"), 0);
  };
  const std::string volume = "/harddisk/volume_2/data/";
  mount_at(volume + "HDD_1_1", "/dev/sda1.ntfs", MS_RDONLY);
  mount_at(volume + "HDD_1_2", "/dev/sda2.ntfs", 0);
  mount_at(volume + "HDD_1_3", "/dev/sda3", MS_RDONLY);
  EXPECT_EQ(IsFolderReadonly((volume + "HDD_1_1").c_str()), 1);
  EXPECT_EQ(IsFolderReadonly("DD_1_1 tmp"), 1); /* any piece of the line */
  EXPECT_EQ(IsFolderReadonly((volume + "HDD_1_2").c_str()), 0);
  EXPECT_EQ(IsFolderReadonly((volume + "HDD_1_3").c_str()), 0);
  EXPECT_EQ(IsFolderReadonly(nullptr), 0);
  /* Lines are looked at in pieces of 127 characters: here the options come in the second one. */
  const std::string longer = volume + std::string(100, 'x');
  mount_at(longer, "/dev/sda4.ntfs", MS_RDONLY);
  EXPECT_EQ(IsFolderReadonly(longer.c_str()), 0);
}

/* ---- Stopping ---- */

TEST_F(MediaControlTest, ServersWithTheirFolderOnTheVolumeStop) {
  struct Case {
    const char* folders; /* of iTunes and broadcast */
    int volume;
    const char* prefix;
    unsigned restart;
    bool itunes_stays, broadcast_stays;
  };
  const char* const apart = "itune_path=/Music\nbroad_path=/Pop/Old\n";
  const char* const same = "itune_path=/Popular\nbroad_path=/Pop\n";
  const Case cases[] = {
      {apart, 1, "X", 1, false, true}, /* volume 1: the prefix does not count */
      {apart, 2, nullptr, 4, true, false},
      {apart, 2, "po", 0, true, true},
      {same, 2, "Pop", 5, false, false},
      {same, 2, "Popu", 1, false, true},
      /* Servers whose folder is gone stop for any volume, and are not to be started again. */
      {"itune_path=/Gone\nbroad_path=/Pop/Gone\n", 3, "X", 0, false, false},
      {"itune_path=/Music\n", 1, nullptr, 1, false, false},
  };
  for (const Case& one : cases) {
    for (const bool persist : {false, true}) {
      write(kSettings, switches(true, true, false, one.folders));
      clear_commands();
      EXPECT_EQ(StopMediaProcess(one.volume, one.prefix, persist ? 7 : 0), one.restart);
      Strings expected{"sleep 2", "sleep 2"};
      if (!one.broadcast_stays) expected.insert(expected.begin() + 1, kKillBroadcast);
      if (!one.itunes_stays) expected.insert(expected.begin(), kKillITunes);
      EXPECT_EQ(commands(), expected) << one.folders << one.volume;
      EXPECT_EQ(read(kSettings), switches(!persist || one.itunes_stays,
                                          !persist || one.broadcast_stays, false, one.folders));
    }
  }
  for (const std::string enabled : {"yess", "Yes"}) {
    write(kSettings, "[media]\nitune=" + enabled + "\nitune_path=/Music\n");
    EXPECT_EQ(StopMediaProcess(1, nullptr, 1), 0u) << "only a whole yes is a server that runs";
  }
}

/* The folders 1 to 4 of a settings file. */
const char kFourFolders[] =
    "upnp_av_folder_1=1\nupnp_av_path_1=/Films\nupnp_av_folder_2=-1\nupnp_av_path_2=/Popular\n"
    "upnp_av_folder_3=0\nupnp_av_path_3=/Music\nupnp_av_folder_4=1\nupnp_av_path_4=/Gone\n";

TEST_F(MediaControlTest, AllThreeStopInOrderAndUPnPForEachFolderOnTheVolumeWhateverThePrefix) {
  const std::string folders = std::string(kFourFolders) + "itune_path=/Pop\nbroad_path=/Pop\n";
  write(kSettings, switches(true, true, true, folders));
  SignalledProcess server(kServerPid);
  EXPECT_EQ(StopMediaProcess(2, "Pop", 1), 13u);
  EXPECT_EQ(commands(),
            Strings({kKillITunes, "sleep 2", kKillBroadcast, "sleep 2", "sleep 4", "sleep 4"}));
  EXPECT_EQ(server.signals(), "TERM");
  EXPECT_FALSE(exists(kDatabase));
  EXPECT_EQ(read(kSettings), switches(false, false, false, folders));
}

TEST_F(MediaControlTest, UPnPGoesOnWithoutAFolderOnTheVolume) {
  write(kSettings, switches(false, false, true, kFourFolders));
  for (const int volume : {1, 3}) { /* the folder on 1 is not in use, the fourth is gone */
    EXPECT_EQ(StopMediaProcess(volume, nullptr, 1), 0u);
  }
  write(kSettings, switches(false, false, false, kFourFolders));
  EXPECT_EQ(StopMediaProcess(2, nullptr, 1), 0u);
  EXPECT_EQ(commands(), Strings());
  EXPECT_TRUE(exists(kDatabase));
}

TEST_F(MediaControlTest, AllMediaStopWithOrWithoutTheirDatabase) {
  for (const bool keeps : {true, false}) {
    clear_commands();
    SignalledProcess server(kServerPid);
    keeps ? StopAllMedia1() : StopAllMedia();
    EXPECT_EQ(commands(), Strings({kKillBroadcast, kKillITunes, "sleep 4"}));
    EXPECT_EQ(server.signals(), "TERM");
    EXPECT_EQ(exists(kDatabase), keeps);
  }
}

/* ---- Starting ---- */

TEST_F(MediaControlTest, MaskTellsWhatStarts) {
  write(kSettings, switches(false, false, false, ""));
  /* The broadcast has no folder and fails, which the caller does not hear of. */
  EXPECT_EQ(StartMediaProcess(5), 0u);
  EXPECT_EQ(commands(), Strings({"sleep 6", kKillITunes, "sleep 2", kKillBroadcast, "sleep 2"}));
  EXPECT_TRUE(exists(kDatabase));
  clear_commands();
  EXPECT_EQ(StartMediaProcess(10), 0u);
  EXPECT_EQ(commands(), Strings({"sleep 6", "sleep 4"}));
  EXPECT_FALSE(exists(kDatabase)) << "UPnP starts with an empty database";
}

}  // namespace
