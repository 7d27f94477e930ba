/* The music broadcast: its settings, the three files that it is in, and the restart of inetd. */
#include <csignal>
#include <cstring>
#include <filesystem>

#include "filesharing/media.h"
#include "tests/device_test.h"
#include "tests/process_state.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kAmple[] = "/etc/ample.conf";
constexpr char kServices[] = "/etc/services";
constexpr char kInetd[] = "/etc/inetd.conf";
constexpr char kStop[] = "/bin/killall [ample]";
constexpr char kCopyServices[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/services]";
constexpr char kCopyInetd[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/inetd.conf]";

class BroadcastTest : public DeviceTest {
 protected:
  static void settings(const std::string& lines) {
    write(kSettings, "[network]\ndisk_server_name=NAS\nip_addr=10.0.0.7\n[media]\n" + lines);
  }

  static std::string rewritten(const std::string& path, const std::string& text) {
    write(path, text);
    EXPECT_EQ(in_process(ResetBroadcast), 0u);
    wait_for_background();
    return read(path);
  }
};

std::string text(const BroadcastSettings& s) {
  return std::to_string(s.enabled) + "|" + s.name + "|" + std::to_string(s.port) + "|" + s.path +
         "|" + s.play_method;
}

TEST_F(BroadcastTest, ReadsKeysWithTheirDefaultsAndLimits) {
  const std::string name(32, 'n'), path(256, 'p');
  const std::pair<std::string, std::string> cases[] = {
      {"music_broad=yes\nbroad_port=0\nplay_method=order\n", "1|NAS_MP3|1234||order"},
      {"broad=yes\nmusic_broad=no\nbroad_port=8000\n", "0|NAS_MP3|8000||"},
      {"music_broad=yes!\nbroad_port=-1\n", "1|NAS_MP3|-1||"},
      {"broad_port=80a\nplay_method=randomly mixed\n", "0|NAS_MP3|1234||randomly mix"},
      {"broad_name=" + name + "x\nbroad_path=" + path + "x\n", "0|" + name + "|1234|" + path + "|"},
  };
  for (const auto& [lines, want] : cases) {
    settings(lines);
    BroadcastSettings record;
    std::memset(&record, 'x', sizeof record);
    EXPECT_EQ(ReadBroadConf(&record), 0);
    EXPECT_EQ(text(record), want) << lines;
  }
  write(kSettings, "[network]\ndisk_server_name=" + std::string(64, 'd') + "\n");
  BroadcastSettings record;
  EXPECT_EQ(ReadBroadConf(&record), 0);
  EXPECT_EQ(record.name, std::string(35, 'd')) << "a default that does not fit is cut";
}

TEST_F(BroadcastTest, SavesTheSwitchUnderItsOldKeyFirst) {
  write(kSettings, "[media]\nitune=no\n");
  BroadcastSettings record{};
  record.enabled = 2;
  record.port = -5;
  std::strcpy(record.name, "Radio");
  std::memset(record.play_method, 'o', sizeof record.play_method);
  EXPECT_EQ(SaveBroadConf(&record), 0);
  EXPECT_EQ(read(kSettings),
            "[media]\nitune=no\nbroad=yes\nmusic_broad=yes\nbroad_name=Radio\nbroad_path=\n"
            "broad_port=-5\nplay_method=ooooooooooooo\n");
}

/* ---- The files ---- */

TEST_F(BroadcastTest, FactoryFilesGetTheServer) {
  settings("music_broad=yes\nbroad_port=8000\nbroad_path=/Music/Pop\nplay_method=order\n");
  write(kAmple, "[log]\nport=1\n"); /* its own keys stand outside any section */
  fs::create_directory("/harddisk/volume_1/data/Music/Pop");
  fs::permissions(kInetd, fs::perms(0600));
  const std::string services = read(kServices), inetd = read(kInetd);
  const Snapshot before = snapshot();
  at_sleep(2, note_process_state("/tmp/state"));
  EXPECT_EQ(ResetBroadcast(), 0u);
  wait_for_background();
  EXPECT_EQ(read("/tmp/state"), "folder /, umask 0, session own, SIGCHLD default, 0-63 open");
  fs::remove("/tmp/state");
  EXPECT_EQ(changes(before), Strings({"~/etc/ample.conf", "~/etc/inetd.conf", "~/etc/services"}));
  EXPECT_EQ(read(kAmple),
            "mp3path=/harddisk/volume_1/data/Music///Pop\nport=8000\norder=true\n"
            "servername=NAS_MP3\nserveraddress=10.0.0.7\n[log]\nport=1\n");
  EXPECT_EQ(read(kServices), services + "ample\t8000/tcp\n");
  EXPECT_EQ(read(kInetd), inetd + "ample\tstream\ttcp\tnowait\troot\t/usr/sbin/ample\n");
  EXPECT_EQ(mode(kInetd), 0644u);
  EXPECT_EQ(commands(), Strings({kStop, "sleep 2", kCopyServices, kCopyInetd,
                                 "/bin/killall [inetd]", "sleep 1", "/etc/rc.d/rc.xinetd"}));
}

TEST_F(BroadcastTest, LinesOfServicesAndInetd) {
  struct Case {
    const char* path;
    const char* enabled;
    std::string before, after;
  };
  const std::string port = "ample\t1234/tcp\n", filler(1023, 'x');
  const std::string server = "ample\tstream\ttcp\tnowait\troot\t/usr/sbin/ample\n";
  const Case cases[] = {
      {kServices, "yes", "ample\t9/tcp\n\n# ample\nampler", port + "\n# ample\n" + port},
      /* A server that is off keeps its line here. */
      {kServices, "no", "http 80/tcp\r\nample\t9/tcp", "http 80/tcp\r\nample\t9/tcp"},
      /* Long lines are looked at in pieces. */
      {kServices, "yes", filler + "xample z\n", filler + "xample z\n" + port},
      {kInetd, "yes", "# for example\nftp x\n\n#ample", server + "ftp x\n\n" + server},
      {kInetd, "no", "# for example\nftp x\nample y\n\nlast", "ftp x\n\nlast"},
  };
  for (const Case& one : cases) {
    settings(std::string("broad_path=/Music\nmusic_broad=") + one.enabled + "\n");
    EXPECT_EQ(rewritten(one.path, one.before), one.after) << one.before;
  }
  EXPECT_NE(read(kAmple).find("\norder=false\n"), std::string::npos);
}

TEST_F(BroadcastTest, FolderThatIsGoneSwitchesTheServerOff) {
  const std::string lines = "broad_path=/Music/Gone\nbroad=yes\nmusic_broad=";
  settings(lines + "no\n");
  const std::string off = read(kSettings);
  settings(lines + "yes\n");
  EXPECT_EQ(ResetBroadcast(), 4294967295u);
  EXPECT_EQ(read(kSettings), off);
  EXPECT_EQ(commands(), Strings({kStop, "sleep 2"}));
}

TEST_F(BroadcastTest, CallerWhoIgnoresChildrenStillLearnsOfAFailedCopy) {
  settings("music_broad=yes\nbroad_path=/Music\n");
  fail_command("cp", 1);
  EXPECT_EQ(in_process([] {
              (void)signal(SIGCHLD, SIG_IGN);
              return ResetBroadcast();
            }),
            36u);
}

}  // namespace
