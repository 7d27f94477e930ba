/* The iTunes server: its settings, its file and its restart. */
#include <cstring>
#include <filesystem>

#include "filesharing/media.h"
#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kConfiguration[] = "/etc/mt-daapd.conf";
constexpr char kSongs[] = "/tmp/songs.gdb";
constexpr char kStop[] = "/bin/killall [mt-daapd]";
constexpr char kCopy[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/mt-daapd.conf]";
constexpr char kStart[] = "/usr/sbin/mt-daapd";

class ITunesTest : public DeviceTest {
 protected:
  static void settings(const std::string& lines) {
    write(kSettings, "[network]\ndisk_server_name=NAS\n[media]\n" + lines);
  }
};

TEST_F(ITunesTest, ReadsKeysWithTheirDefaultsAndLimits) {
  const std::string name(32, 'n'), path(256, 'p');
  const std::pair<std::string, std::string> cases[] = {
      {"itune=yes\nitune_name=\nitune_path=/Music\n", "1|NAS_iTunes|/Music"},
      {"itune=yesterday\nitune_name=My songs\n", "1|My songs|"},
      {"itune=Yes\nitune_name=" + name + "x\nitune_path=" + path + "x\n", "0|" + name + "|" + path},
  };
  for (const auto& [lines, want] : cases) {
    settings(lines);
    ITunesSettings record;
    std::memset(&record, 'x', sizeof record);
    EXPECT_EQ(ReadiTuneConf(&record), 0);
    EXPECT_EQ(std::to_string(record.enabled) + "|" + record.name + "|" + record.path, want);
  }
}

TEST_F(ITunesTest, SavesItsKeysAndLeavesTheRest) {
  write(kSettings, "[media]\nitune_name=old\nmusic_broad=no\n\n[network]\nport=80\n");
  ITunesSettings record{};
  record.enabled = -3;
  std::memset(record.name, 'n', sizeof record.name); /* a page filled it to the end */
  std::strcpy(record.path, "/Music/Pop");
  EXPECT_EQ(SaveiTuneConf(&record), 0);
  EXPECT_EQ(read(kSettings), "[media]\nitune_name=" + std::string(33, 'n') +
                                 "\nmusic_broad=no\nitune=yes\nitune_path=/Music/Pop\n\n"
                                 "[network]\nport=80\n");
}

TEST_F(ITunesTest, FactoryFileGetsFolderPortAndName) {
  settings("itune=yes\nitune_path=/Music/Pop\n");
  fs::create_directory("/harddisk/volume_1/data/Music/Pop");
  fs::permissions(kConfiguration, fs::perms(0600));
  write(kSongs, "songs");
  const Snapshot before = snapshot();
  EXPECT_EQ(ResetItune(), 0);
  EXPECT_EQ(read(kConfiguration),
            "# iTunes music server\nweb_root\t/usr/share/mt-daapd/admin-root\nport\t\t3689\n"
            "admin_pw\tadmin\nservername\t\tNAS_iTunes\nrunas\t\troot\n"
            "mp3_dir\t\t/harddisk/volume_1/data/Music///Pop\ndb_dir\t\t/tmp\n"
            "extensions\t.mp3,.m4a,.m4p\n");
  EXPECT_EQ(changes(before), Strings({"~/etc/mt-daapd.conf", "-/tmp/songs.gdb"}));
  EXPECT_EQ(mode(kConfiguration), 0644u);
  EXPECT_EQ(commands(), Strings({kStop, "sleep 2", kCopy, kStart}));
}

TEST_F(ITunesTest, LinesAreReplacedAndNeverAdded) {
  settings("itune=yes\nitune_name=My songs\nitune_path=/Music\n");
  const std::string folder = "mp3_dir\t\t/harddisk/volume_1/data/Music//\n";
  const std::pair<std::string, std::string> cases[] = {
      {"portal\nmp3_dir", "port\t\t3689\n" + folder}, /* a line that begins with the word */
      {" port 1\n#servername x\nservername", " port 1\n#servername x\nservername\t\tMy songs\n"},
      {"mp3_dir a\nmp3_dir b\n", folder + folder},
      /* Long lines are looked at in pieces of 1023 characters. */
      {std::string(1023, 'x') + "port\r\n", std::string(1023, 'x') + "port\t\t3689\n"},
  };
  for (const auto& [before, after] : cases) {
    write(kConfiguration, before);
    EXPECT_EQ(ResetItune(), 0);
    EXPECT_EQ(read(kConfiguration), after);
  }
}

TEST_F(ITunesTest, FolderThatIsGoneSwitchesTheServerOffAndAMissingShareDoesNot) {
  const std::pair<const char*, bool> cases[] = {
      {"/Music/Gone", false}, {"/Gone", true}, {"Music", true}, {"", true}};
  for (const auto& [path, stays] : cases) {
    const std::string lines = std::string("itune_path=") + path + "\nitune=";
    settings(lines + "no\n");
    const std::string off = read(kSettings);
    EXPECT_EQ(ResetItune(), 0);
    settings(lines + "yes\n");
    const Snapshot before = snapshot();
    EXPECT_EQ(ResetItune(), -1) << path;
    EXPECT_EQ(changes(before), stays ? Strings() : Strings({"~/etc/CGI_ds.conf"})) << path;
    EXPECT_EQ(read(kSettings) == off, !stays) << path;
  }
  EXPECT_EQ(commands().size(), std::size(cases) * 4) << "each time stopped, and never started";
}

}  // namespace
