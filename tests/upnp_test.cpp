/* The UPnP AV server: its settings, its file, its database and the signals to it. */
#include <sys/mount.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "filesharing/media.h"
#include "tests/device_test.h"
#include "tests/recorded_signals.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kFactory[] = "/usr/local/CGI_ds.conf";
constexpr char kMedia[] = "/etc/media.conf";
constexpr char kServerPid[] = "/var/run/media_server.pid";
constexpr char kScanPid[] = "/var/run/media_scan.pid";
constexpr char kStart[] = "/etc/rc.d/mediaserver.sh [start]";

class UPnPTest : public DeviceTest {
 protected:
  static void settings(const std::string& media, const std::string& network = "") {
    write(kSettings, "[network]\ndisk_server_name=NAS\n" + network + "[media]\n" + media);
  }

  static std::string slot(int number, const std::string& path, int content_type = 0) {
    const std::string end = "_" + std::to_string(number) + "=";
    return "upnp_av_folder" + end + "1\nupnp_av_path" + end + path + "\ncontent_type" + end +
           std::to_string(content_type) + "\n";
  }

  static std::string database(int volume) {
    return "/harddisk/volume_" + std::to_string(volume) + "/conf/media.db";
  }
  /* Of a scan that is finished. */
  static void make_database(int volume) {
    fs::create_directories(database(volume));
    for (const char* name : {"/media_server.db", "/db_scan.ok", "/thumbs"}) {
      write(database(volume) + name, "x");
    }
  }

  /* What the server's file becomes, from an empty one. */
  static std::string rendered(int keep_db = 1) {
    write(kMedia, "");
    clear_commands();
    EXPECT_EQ(ResetUPnPAV(keep_db), 0);
    wait_for_background();
    return read(kMedia);
  }
  static std::string key(const std::string& text, const std::string& name) {
    const size_t start = text.find(name + "=");
    return start == text.npos ? "none" : text.substr(start, text.find('\n', start) - start);
  }
};

/* ---- Settings ---- */

std::string text(const UPnPAVSettings& s) {
  std::string all = std::to_string(s.enabled) + "|" + s.name;
  for (int i = 0; i < FSH_MEDIA_FOLDERS; ++i) {
    all += "|" + std::to_string(s.folder_used[i]) + "," + s.folder_share[i] + "," +
           s.folder_path[i] + "," + std::to_string(s.content_type[i]);
  }
  return all + "|" + std::to_string(s.content_scan) + "|" + std::to_string(s.code_page) + "|" +
         std::to_string(s.port) + "|" + s.version + "|" + std::to_string(s.scan_interval);
}

TEST_F(UPnPTest, ReadsKeysWithTheirDefaultsAndLimits) {
  const std::string name(32, 'n'), share(20, 's'), path(256, 'p');
  const std::string empty = "0|NAS_Media|0,,,0|0,,,0|0,,,0|0,,,0|-1|437|0|";
  struct Case {
    std::string media, network, factory, want;
  };
  const Case cases[] = {
      {"upnp_av=yes\nupnp_name=Films\ncontent_scan=5\nscan_interval=30\nupnp_av_folder_1=1\n"
       "upnp_av_share_1=Music\nupnp_av_path_1=/Music\ncontent_type_1=3\nupnp_av_folder_4=-7\n"
       "upnp_av_path_4=x\ncontent_type_4=9\n",
       "code_page=850\nport=8080\nversion=1.0\n", "",
       "1|Films|1,Music,/Music,3|0,,,0|0,,,0|-7,,x,9|5|850|8080|1.0|30"},
      {"upnp_av=yes1\nupnp_name=" + name + "x\nupnp_av_share_2=" + share +
           "x\nupnp_av_path_2=" + path + "x\nscan_interval= 12 minutes\ncontent_scan=x\n",
       "version=123456789012\nport=x\n", "",
       "1|" + name + "|0,,,0|0," + share + "," + path + ",0|0,,,0|0,,,0|-1|437|0|12345678901|12"},
      {"scan_interval=-1\n", "", "", empty + "|4294967295"},
      {"scan_interval=4294967296\n", "", "", empty + "|4294967295"},
      {"scan_interval=-4294967296\n", "", "", empty + "|4294967295"},
      {"scan_interval=-4294967295\n", "", "", empty + "|1"},
      /* The factory knows the version better. */
      {"", "version=1.0\n", "[network]\nversion=3.1\n", empty + "3.1|0"},
      {"", "version=1.0\n", "[network]\nport=1\n[media]\nversion=9\n", empty + "1.0|0"},
      {"", "version=1.0\n", "[network]\nversion=\n", empty + "|0"},
  };
  for (const Case& one : cases) {
    settings(one.media, one.network);
    write(kFactory, one.factory);
    UPnPAVSettings record;
    std::memset(&record, 'x', sizeof record);
    EXPECT_EQ(ReadUPnPAVConf(&record), 0);
    EXPECT_EQ(text(record), one.want) << one.media;
  }
}

TEST_F(UPnPTest, SavesItsKeysInTheirOrderAndUnchecked) {
  write(kSettings, "[media]\nitune=no\n\n[network]\nport=80\n");
  UPnPAVSettings record{.enabled = 4,
                        .name = "Films",
                        .folder_used = {1},
                        .folder_share = {},
                        .folder_path = {"/s/Clips"},
                        .content_type = {3, 0, 0, 9},
                        .content_scan = -1,
                        .code_page = 850,
                        .port = 8080, /* like the code page of the settings for all: not saved */
                        .version = "",
                        .scan_interval = 4294967295u};
  std::memset(record.folder_share[0], 's', sizeof record.folder_share[0]);
  EXPECT_EQ(SaveUPnPAVConf(&record), 0);
  EXPECT_EQ(read(kSettings),
            "[media]\nitune=no\nupnp_av=yes\nupnp_name=Films\nscan_interval=4294967295\n"
            "content_scan=-1\n"
            "upnp_av_folder_1=1\nupnp_av_share_1=sssssssssssssssssssss\n"
            "upnp_av_path_1=/s/Clips\ncontent_type_1=3\n"
            "upnp_av_folder_2=0\nupnp_av_share_2=\nupnp_av_path_2=\ncontent_type_2=0\n"
            "upnp_av_folder_3=0\nupnp_av_share_3=\nupnp_av_path_3=\ncontent_type_3=0\n"
            "upnp_av_folder_4=0\nupnp_av_share_4=\nupnp_av_path_4=\ncontent_type_4=9\n\n"
            "[network]\nport=80\n");
}

TEST_F(UPnPTest, FactoryValuesComeBackAndMissingOnesAreEmptied) {
  write(kFactory, "[media]\nupnp_av=no\nupnp_name=\nscan_interval=30\nupnp_av_path_4=" +
                      std::string(312, 'p') + "\ncontent_scan=8\n");
  write(kSettings,
        "[media]\nupnp_av=yes\nupnp_name=Films\ncontent_scan=5\ncontent_type_1=3\n"
        "upnp_av_folder_1=1\nupnp_av_share_1=Music\nupnp_av_path_1=/Music\n");
  ResetUPnPAV2Def();
  EXPECT_EQ(read(kSettings),
            "[media]\nupnp_av=no\nupnp_name=\ncontent_scan=5\ncontent_type_1=3\n"
            "upnp_av_folder_1=\nupnp_av_share_1=\nupnp_av_path_1=\nscan_interval=30\n"
            "upnp_av_folder_2=\nupnp_av_share_2=\nupnp_av_path_2=\n"
            "upnp_av_folder_3=\nupnp_av_share_3=\nupnp_av_path_3=\n"
            "upnp_av_folder_4=\nupnp_av_share_4=\nupnp_av_path_4=" +
                std::string(311, 'p') + "\n");
  EXPECT_EQ(commands(), Strings({"/etc/rc.d/twonkymedia.sh [stop]"}));
}

/* ---- Signals ---- */

TEST_F(UPnPTest, ScannerAndServerAreToldByTheirOwnPidFiles) {
  SignalledProcess scanner(kScanPid);
  EXPECT_EQ(ScanUPnPAVServer(), 0);
  EXPECT_EQ(scanner.signals(), "HUP");
  EXPECT_EQ(ScanUPnPAVServer(), -1) << "the scanner has ended, as kill(2) says";
  for (const auto& [lines, port] : {std::pair("port=12345678\n", "123456"), {"", "80"}}) {
    settings("", lines);
    write(kMedia, "device_port=7\nfriendlyname=x\n[a]\n");
    SignalledProcess server(kServerPid);
    EXPECT_EQ(ReloadUPnPAVServerIP(), 0);
    EXPECT_EQ(server.signals(), "HUP");
    EXPECT_EQ(read(kMedia), std::string("device_port=") + port + "\nfriendlyname=x\n[a]\n");
  }
}

TEST_F(UPnPTest, PidFileWithoutAProcessSignalsNobody) {
  const std::pair<const char*, int> cases[] = {
      {"0\n", 0}, {"-1\n", -1}, {"-77", -77}, {"abc", -1}, {"4294967297\n", -1}};
  for (const auto& [content, result] : cases) {
    for (const char* file : {kServerPid, kScanPid}) write(file, content);
    EXPECT_EQ(ScanUPnPAVServer(), result) << content;
    EXPECT_EQ(ReloadUPnPAVServerIP(), result) << content;
    StopUPnPDaemon(nullptr, 0);
  }
  EXPECT_EQ(commands(), Strings()) << "nothing was stopped that had to be waited for";
}

/* ---- The database ---- */

TEST_F(UPnPTest, FolderOnARemovableShareCostsTheDatabase) {
  mount_volume(3);
  write("/etc/win_share.info",
        "HDD_1_1=0:3:c:/HDD_1_1/:everyone:7\nFLASH_1_2=0:3:c:/FLASH_1_2/:everyone:7\n");
  for (const char* share : {"HDD_1_1", "FLASH_1_2"}) {
    fs::create_directory(std::string("/harddisk/volume_3/data/") + share);
  }
  const std::pair<const char*, bool> cases[] = {
      {"/HDD_1_1", true}, {"/FLASH_1_2", true}, {"/HDD_1_1/Gone", false}, {"/Music", false}};
  for (const auto& [path, costs] : cases) {
    make_database(1);
    UPnPAVSettings record{};
    record.folder_used[3] = -1;
    std::strcpy(record.folder_path[3], path);
    StopUPnPDaemon(&record, 0);
    EXPECT_EQ(exists(database(1) + "/media_server.db"), !costs) << path;
  }
}

TEST_F(UPnPTest, FlagOfTheScanGoesFromTheFirstUsableVolume) {
  mount_volume(3);
  for (const int volume : {1, 3}) make_database(volume);
  const Snapshot before = snapshot();
  RemoveDBOKFlag();
  EXPECT_EQ(changes(before), Strings({"-" + database(1) + "/db_scan.ok"}));
}

/* ---- Applying ---- */

TEST_F(UPnPTest, FactoryFileGetsTheSettingsAndTheServerStartsByItself) {
  settings("upnp_av=yes\nscan_interval=30\ncontent_scan=5\n" + slot(2, "/Music//Pop/", 2),
           "port=8080\ncode_page=850\n");
  fs::create_directory("/harddisk/volume_1/data/Music/Pop");
  write(kMedia, read(kMedia) + "[other]\nport=1\n");
  const Snapshot before = snapshot();
  SignalledProcess server(kServerPid);
  EXPECT_EQ(ResetUPnPAV(1), 0);
  EXPECT_EQ(server.signals(), "TERM");
  wait_for_background();
  EXPECT_EQ(read(kMedia),
            "contentdir=+P|/harddisk/volume_1/data/Music//Pop/\nfriendlyname=NAS_Media\n"
            "scan_interval=30\ncodepage=850\nserialnumber=2.11\ndevice_port=8080\n"
            "dbfile=/harddisk/volume_1/conf/media.db\n[other]\nport=1\n");
  EXPECT_EQ(changes(before), Strings({"~/etc/media.conf", "+/var/run/media_server.pid"}));
  EXPECT_EQ(commands(), Strings({"sleep 4", "sleep 4", "sleep 4", kStart}));
}

TEST_F(UPnPTest, FoldersAreListedWithTheirKindOfContent) {
  write("/etc/share.info",
        "Music=0:1:c:/Music:administrators:7\nVideo=0:1:c:/Video:administrators:7\n");
  fs::create_directories("/harddisk/volume_1/data/Video/Clips");
  const std::pair<std::string, const char*> cases[] = {
      {slot(1, "/Music", 0) + slot(2, "/Video/Clips", 3),
       "contentdir=+A|/harddisk/volume_1/data/Music,+V|/harddisk/volume_1/data/Video/Clips"},
      {slot(1, "/Gone", 1) + slot(3, "/Music/Gone", 1) + slot(4, "/Video", 1),
       "contentdir=+M|/harddisk/volume_1/data/Video"},
      {"upnp_av_folder_1=0\n" + slot(1, "/Music") + slot(2, "/Music", 2),
       "contentdir=+P|/harddisk/volume_1/data/Music"},
      {slot(1, "/Gone"), "none"},
      /* Kinds that do not exist are all kinds. */
      {slot(1, "/Music", -1) + slot(2, "/Music", 4),
       "contentdir=+A|/harddisk/volume_1/data/Music,+A|/harddisk/volume_1/data/Music"},
  };
  for (const auto& [slots, want] : cases) {
    settings("upnp_av=yes\nscan_interval=30\n" + slots);
    const std::string text = rendered();
    EXPECT_EQ(key(text, "contentdir"), want);
    EXPECT_EQ(key(text, "scan_interval"), "scan_interval=-1") << "off without its switch";
  }
}

TEST_F(UPnPTest, DatabaseHasItsPlaceForEachDisk) {
  struct Case {
    std::vector<int> mounted;
    int fixed; /* the volume that has it for good; 0: none */
    std::string dbfile, removal;
  };
  const Case cases[] = {
      {{1, 2, 3, 5}, 1, "1/conf/media.db", ""},
      {{2, 3, 5}, 2, "2/conf/media.db", ""},
      {{3, 4, 5}, 5, "5/conf/media.db", ""},
      {{3, 4}, 0, "3/data//media.db", "[/harddisk/volume_3/data//media.db]"},
      /* Its path stands unquoted in the command that removes it. */
      {{4}, 0, "4/data/a b/media.db", "[/harddisk/volume_4/data/a] [b/media.db]"},
  };
  for (const Case& one : cases) {
    SetUp();
    write("/etc/share.info", "A=0:3:c:/:everyone:7\nB=0:4:c:/a b:everyone:7\n");
    settings("upnp_av=yes\n" + slot(1, "/A") + slot(2, "/B"));
    unmount_volume(1);
    for (const int volume : one.mounted) {
      mount_volume(volume);
      make_database(volume);
      fs::create_directory("/harddisk/volume_" + std::to_string(volume) + "/data/a b");
    }
    EXPECT_EQ(key(rendered(0), "dbfile"), "dbfile=/harddisk/volume_" + one.dbfile);
    Strings expected{"sleep 4", "sleep 4", kStart};
    if (!one.removal.empty()) expected.insert(expected.begin() + 1, "/bin/rm [-rf] " + one.removal);
    EXPECT_EQ(commands(), expected);
    for (const int volume : one.mounted) {
      EXPECT_EQ(exists(database(volume) + "/media_server.db"), volume != one.fixed) << volume;
    }
  }
}

TEST_F(UPnPTest, DatabaseStaysOffReadOnlyNtfs) {
  write("/etc/win_share.info",
        "HDD_1_1=0:3:c:/HDD_1_1/:everyone:7\nHDD_1_2=0:3:c:/HDD_1_2/:everyone:7\n");
  unmount_volume(1);
  mount_volume(3);
  const std::string data = "/harddisk/volume_3/data/";
  for (const char* share : {"HDD_1_1", "HDD_1_2"}) fs::create_directory(data + share);
  ASSERT_EQ(mount("/dev/sda1.ntfs", (data + "HDD_1_1").c_str(), "tmpfs", MS_RDONLY, "size=4k"), 0);
  settings("upnp_av=yes\n" + slot(1, "/HDD_1_1") + slot(2, "/HDD_1_2"));
  EXPECT_EQ(key(rendered(), "dbfile"), "dbfile=" + data + "HDD_1_2//media.db");
  settings("upnp_av=yes\n" + slot(1, "/HDD_1_1"));
  EXPECT_EQ(key(rendered(), "dbfile"), "dbfile=/tmp/media.db");
}

TEST_F(UPnPTest, ServerThatIsOffIsStoppedAndItsDatabaseRemoved) {
  settings("upnp_av=no\n" + slot(1, "/Music"));
  make_database(1);
  SignalledProcess server(kServerPid);
  const Snapshot before = snapshot();
  EXPECT_EQ(ResetUPnPAV(0), 0);
  EXPECT_EQ(server.signals(), "TERM");
  EXPECT_EQ(commands(), Strings({"sleep 4", "sleep 4"}));
  EXPECT_EQ(changes(before),
            Strings({"-" + database(1) + "/db_scan.ok", "-" + database(1) + "/media_server.db"}));
}

TEST_F(UPnPTest, ServerStartsInTheCallersFolderWithNothingOpen) {
  settings("upnp_av=yes\n");
  fs::remove("/etc/rc.d/mediaserver.sh"); /* a link to the stand-in */
  write("/etc/rc.d/mediaserver.sh",
        "#!/bin/sh\nexec > /tmp/state\numask\npwd\ntest -e /proc/self/fd/63 || echo closed\n");
  fs::permissions("/etc/rc.d/mediaserver.sh", fs::perms(0755));
  fs::current_path("/tmp");
  ASSERT_EQ(dup2(STDERR_FILENO, 63), 63);
  EXPECT_EQ(ResetUPnPAV(1), 0);
  wait_for_background();
  (void)close(63);
  EXPECT_EQ(read("/tmp/state"), "0000\n/tmp\nclosed\n");
}

}  // namespace
