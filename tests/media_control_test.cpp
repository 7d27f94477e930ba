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

/* Music lies on volume 1, Pop and Popular on volume 2. */
class MediaControlTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    mount_volume(2);
    write("/etc/share.info",
          "Music=0:1:c:/Music/:administrators:7\nPop=0:2:c:/a/Pop:administrators:7\n"
          "Popular=0:2:c:/b/:administrators:7\n");
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
  struct Case {
    std::string reference;
    int result;
    const char* share;
    const char* folder;
  };
  const Case cases[] = {
      {"//Music//Pop/", 0, "Music", "/Pop/"},
      {"/Music", 0, "Music", ""},
      {"/Music//", 0, "Music", ""},
      {"///Music/Pop///Live", 0, "Music", "/Pop/Live"},
      {"/music", 0, "music", ""},
      {"/Pop/Old", 0, "Pop", "/Old"}, /* the share's path has no slash at its end */
      {"Music/Pop", 0, "Pop", ""},    /* what stands before the first slash does not count */
      {"Music", -1, "?", "?"},
      {"", -1, "?", "?"},
      {"/", -1, "?", "?"},
      {"/Gone/Pop", -1, "?", "?"},
      {"/Music/Gone", -2, "?", "?"},
      {"/Music/" + std::string(3000, 'x'), -2, "?", "?"},
      {"/" + std::string(3000, 'x'), -1, "?", "?"},
  };
  for (const Case& one : cases) {
    std::string share = "?", folder = "?";
    share.resize(one.reference.size() + 2);
    folder.resize(one.reference.size() + 2);
    EXPECT_EQ(StripShareAndFolder(one.reference.c_str(), share.data(), folder.data(), 0),
              one.result);
    EXPECT_STREQ(share.c_str(), one.share) << one.reference;
    EXPECT_STREQ(folder.c_str(), one.folder) << one.reference;
    EXPECT_EQ(StripShareAndFolder(one.reference.c_str(), nullptr, nullptr, 1), one.result);
  }
  EXPECT_EQ(StripShareAndFolder(nullptr, nullptr, nullptr, 1), -1);
}

TEST_F(MediaControlTest, ShareWhoseNameIsCutToItsFieldIsAnotherOne) {
  write("/etc/share.info", std::string(20, 'M') + "=0:1:c:/Music/:administrators:7\n");
  EXPECT_EQ(StripShareAndFolder(("/" + std::string(20, 'M')).c_str(), nullptr, nullptr, 1), 0);
  EXPECT_EQ(StripShareAndFolder(("/" + std::string(21, 'M')).c_str(), nullptr, nullptr, 1), -1);
}

TEST_F(MediaControlTest, CheckAloneCopiesNothingOut) {
  char share[] = "old", folder[] = "old";
  EXPECT_EQ(StripShareAndFolder("/Pop/Old", share, folder, 1), 0);
  EXPECT_STREQ(share, "old");
  EXPECT_STREQ(folder, "old");
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
    Strings commands;
    bool itunes_stays;
    bool broadcast_stays;
  };
  const Strings no_kill{"sleep 2", "sleep 2"};
  const Strings itunes{kKillITunes, "sleep 2", "sleep 2"};
  const Strings broadcast{"sleep 2", kKillBroadcast, "sleep 2"};
  const Strings both{kKillITunes, "sleep 2", kKillBroadcast, "sleep 2"};
  const char* const apart = "itune_path=/Music\nbroad_path=/Pop/Old\n";
  const char* const same = "itune_path=/Popular\nbroad_path=/Pop\n";
  const Case cases[] = {
      {apart, 3, nullptr, 0, no_kill, true, true},
      {apart, 1, nullptr, 1, itunes, false, true},
      {apart, 1, "X", 1, itunes, false, true}, /* volume 1: the prefix does not count */
      {apart, 2, nullptr, 4, broadcast, true, false},
      {apart, 2, "X", 0, no_kill, true, true},
      {apart, 2, "Po", 4, broadcast, true, false},
      {apart, 2, "po", 0, no_kill, true, true},
      {same, 2, "Pop", 5, both, false, false},
      {same, 2, "Popu", 1, itunes, false, true},
      {same, 2, "", 5, both, false, false},
      {same, 1, nullptr, 0, no_kill, true, true},
      /* Servers whose folder is gone stop for any volume, and are not to be started again. */
      {"itune_path=/Gone\nbroad_path=/Pop/Gone\n", 3, "X", 0, both, false, false},
      {"itune_path=/Music\n", 1, nullptr, 1, both, false, false},
      {"itune_path=\nbroad_path=Pop\n", 2, nullptr, 0, both, false, false},
  };
  for (const Case& one : cases) {
    for (const int persist : {0, 7}) {
      write(kSettings, switches(true, true, false, one.folders));
      clear_commands();
      EXPECT_EQ(StopMediaProcess(one.volume, one.prefix, persist), one.restart) << one.folders;
      EXPECT_EQ(commands(), one.commands) << one.folders << one.volume;
      EXPECT_EQ(read(kSettings), switches(persist == 0 || one.itunes_stays,
                                          persist == 0 || one.broadcast_stays, false, one.folders));
    }
  }
}

TEST_F(MediaControlTest, OnlyAWholeYesIsAServerThatRuns) {
  for (const std::string enabled : {"no", "yess", "Yes", "yes.", ""}) {
    write(kSettings, "[media]\nitune=" + enabled + "\nitune_path=/Music\nmusic_broad=" + enabled +
                         "\nbroad_path=/Gone\n");
    EXPECT_EQ(StopMediaProcess(1, nullptr, 1), 0u);
    EXPECT_EQ(commands(), Strings()) << enabled;
  }
}

/* The folders 1 to 3 of a settings file. */
const char kThreeFolders[] =
    "upnp_av_folder_1=1\nupnp_av_path_1=/Pop\nupnp_av_folder_2=-1\nupnp_av_path_2=/Popular\n"
    "upnp_av_folder_3=0\nupnp_av_path_3=/Music\nupnp_av_folder_4=1\nupnp_av_path_4=/Gone\n";

TEST_F(MediaControlTest, UPnPStopsOnceForEachFolderOnTheVolumeWhateverThePrefix) {
  write(kSettings, switches(false, false, true, kThreeFolders));
  SignalledProcess server(kServerPid);
  EXPECT_EQ(StopMediaProcess(2, "X", 1), 8u);
  EXPECT_EQ(commands(), Strings({"sleep 4", "sleep 4"}));
  EXPECT_EQ(server.signals(), "TERM");
  EXPECT_FALSE(exists(kDatabase));
  EXPECT_EQ(read(kSettings), switches(false, false, false, kThreeFolders));
}

TEST_F(MediaControlTest, UPnPGoesOnWithoutAFolderOnTheVolume) {
  const std::string settings = switches(false, false, true, kThreeFolders);
  write(kSettings, settings);
  SignalledProcess server(kServerPid);
  for (const int volume : {1, 3}) { /* the folder on 1 is not in use, the fourth is gone */
    EXPECT_EQ(StopMediaProcess(volume, nullptr, 1), 0u);
  }
  write(kSettings, switches(false, false, false, kThreeFolders));
  EXPECT_EQ(StopMediaProcess(2, nullptr, 1), 0u);
  EXPECT_EQ(commands(), Strings());
  EXPECT_EQ(server.signals(), "");
  EXPECT_TRUE(exists(kDatabase));
}

TEST_F(MediaControlTest, AllThreeStopInTheirOrder) {
  const std::string folders = std::string(kThreeFolders) + "itune_path=/Pop\nbroad_path=/Pop\n";
  write(kSettings, switches(true, true, true, folders));
  SignalledProcess server(kServerPid);
  EXPECT_EQ(StopMediaProcess(2, "Pop", 1), 13u);
  EXPECT_EQ(commands(),
            Strings({kKillITunes, "sleep 2", kKillBroadcast, "sleep 2", "sleep 4", "sleep 4"}));
  EXPECT_EQ(read(kSettings), switches(false, false, false, folders));
}

TEST_F(MediaControlTest, NothingStopsWithoutTheSettings) {
  fs::remove(kSettings);
  EXPECT_EQ(StopMediaProcess(1, nullptr, 1), 0u);
  EXPECT_EQ(commands(), Strings());
  EXPECT_FALSE(exists(kSettings));
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
  struct Case {
    unsigned mask;
    Strings commands;
  };
  const Case cases[] = {
      {0, {"sleep 6"}},
      {2, {"sleep 6"}},
      {1, {"sleep 6", kKillITunes, "sleep 2"}},
      {4, {"sleep 6", kKillBroadcast, "sleep 2"}},
      {8, {"sleep 6", "sleep 4"}},
      {15, {"sleep 6", kKillITunes, "sleep 2", kKillBroadcast, "sleep 2", "sleep 4"}},
  };
  for (const Case& one : cases) {
    write(kDatabase, "songs");
    write(kSettings, switches(false, false, false, ""));
    clear_commands();
    /* The broadcast has no folder and fails, which the caller does not hear of. */
    EXPECT_EQ(StartMediaProcess(one.mask), 0u);
    EXPECT_EQ(commands(), one.commands) << one.mask;
    EXPECT_EQ(exists(kDatabase), (one.mask & 8) == 0) << "UPnP starts with an empty database";
  }
}

TEST_F(MediaControlTest, StartReturnsWhatUPnPAnswers) {
  fs::remove(kSettings);
  EXPECT_EQ(StartMediaProcess(5), 0u);
  EXPECT_EQ(StartMediaProcess(8), 4294967295u);
}

}  // namespace
