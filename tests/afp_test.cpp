// The AFP service: its settings, afpd.conf, the advertisements, the restart.
#include <unistd.h>

#include <csignal>
#include <cstring>

#include "filesharing/services.h"
#include "tests/device_test.h"
#include "tests/process_state.h"

namespace {

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kAfpd[] = "/etc/netatalk/afpd.conf";
constexpr char kResponder[] = "/etc/howl/mDNSResponder.conf";
constexpr char kCopyAfpd[] = "/bin/cp [-f] [/tmp/tmpfile.XXXXXX] [/etc/netatalk/afpd.conf]";
constexpr char kKillResponder[] = "/bin/killall [-SIGINT] [mDNSResponder]";

constexpr char kHttp[] = "\"NAS\"\t_http._tcp\tlocal.\t8080\n";
constexpr char kAfp[] = "\"NAS (AFP)\"\t_afpovertcp._tcp\tlocal.\t548\n";
constexpr char kTimeMachine[] =
    "\"NAS (Time Machine)\"\t_adisk._tcp local.\t9\t\"sys=waMA=00:11:22:33:44:55\"\t"
    "\"dk2=adVF=0x83,adVN=[backup],adVU=080ba3d0-0008-1000-0000-0000f4010001\"\n"
    "\"NAS (Time Machine)\"\t_afpovertcp._tcp\tlocal.\t548\n";

class AfpTest : public DeviceTest {
 protected:
  // The settings file with these AFP keys, and a share called Backup.
  static void set_up_server(const std::string& enabled, const std::string& tm_share,
                            const std::string& device = "disk_server_name=NAS\nport=8080\n") {
    write(kSettings, "[network]\n" + device +
                         "hw_addr=00:11:22:33:44:55\napple_anony=no\napple_name=NAS\n"
                         "apple_unixcode=UTF8\napple_enable=" +
                         enabled + "\napple_tm_sh=" + tm_share + "\n");
    write("/etc/share.info", "Backup=0:1:c:/b/:administrators:7\n");
  }

  static AfpSettings settings(const char* name, const char* unixcode, const char* maccode,
                              int guests) {
    AfpSettings record{};
    record.enabled = 1;
    record.anonymous = guests;
    std::strcpy(record.name, name);
    std::strcpy(record.unixcode, unixcode);
    std::strcpy(record.maccode, maccode);
    return record;
  }
};

TEST_F(AfpTest, SettingsAreSavedAndReadBack) {
  AfpSettings saved = settings("My Server", "", "MAC_ROMAN", 1);
  std::memset(saved.tm_share, 'x', sizeof saved.tm_share);  // a page filled it to the end
  EXPECT_EQ(SaveAFPConf(&saved), 0);
  AfpSettings read{};
  read.reserved = 7;
  const long descriptors = open_descriptors();
  EXPECT_EQ(ReadAFPConf(&read), 0u);
  EXPECT_EQ(open_descriptors(), descriptors + 1) << "the settings file stays open";
  EXPECT_EQ(read.enabled, 1);
  EXPECT_EQ(read.reserved, 0);
  EXPECT_EQ(read.anonymous, 1);
  EXPECT_STREQ(read.name, "My Server");
  EXPECT_STREQ(read.unixcode, "");
  EXPECT_STREQ(read.maccode, "\"UTF8-MAC\"") << "whatever was saved";
  EXPECT_EQ(std::string(read.tm_share), std::string(20, 'x'));
}

TEST_F(AfpTest, SwitchesNeedTheirFirstThreeLettersAndSomeKeysMustBeThere) {
  const char keys[] = "apple_enable=yes!\napple_anony=YES\napple_name=a\napple_unixcode=b\n";
  AfpSettings record{};
  write(kSettings, std::string("[network]\n") + keys);
  EXPECT_EQ(ReadAFPConf(&record), 0u);
  EXPECT_EQ(record.enabled, 1);
  EXPECT_EQ(record.anonymous, 0);
  for (const std::string key : {"apple_enable", "apple_anony", "apple_name", "apple_unixcode"}) {
    std::string text = std::string("[network]\n") + keys;
    text.replace(text.find(key), 1, "A");
    write(kSettings, text);
    EXPECT_EQ(ReadAFPConf(&record), 18u) << key;
  }
  EXPECT_EQ(IsShUsedByTM("Backup"), 0) << "in settings that can not be read";
}

TEST_F(AfpTest, TimeMachineShareIsComparedLetterByLetter) {
  set_up_server("yes", "Backup");
  EXPECT_EQ(IsShUsedByTM("Backup"), 1);
  EXPECT_EQ(IsShUsedByTM("backup"), 0);
  set_up_server("no", "Backup");
  EXPECT_EQ(IsShUsedByTM("Backup"), 0);
}

TEST_F(AfpTest, ServerLineHasOneBlankBehindEachToken) {
  const std::pair<AfpSettings, const char*> cases[] = {
      {settings("", "", "", 0), "- -uamlist uams_dhx.so "},
      {settings("NAS", "", "", 1), "NAS -uamlist uams_guest.so,uams_dhx.so -guestname \"guest\" "},
      {settings("My NAS", "UTF8", "\"UTF8-MAC\"", 1),
       "My NAS -uamlist uams_guest.so,uams_dhx.so -unixcodepage UTF8 -maccodepage \"UTF8-MAC\" "
       "-guestname \"guest\" "},
  };
  for (const auto& [record, line] : cases) {
    clear_commands();
    const Snapshot before = snapshot();
    Strings settling;
    at_sleep(1, [&] { settling = changes(before); });
    EXPECT_EQ(SetAFPDConf(record), 0u);
    EXPECT_EQ(settling.back(), "+/tmp/tmpfile.XXXXXX") << "it goes when the line has settled";
    EXPECT_EQ(read(kAfpd), line);
    EXPECT_EQ(commands(), Strings({kCopyAfpd, kCopyAfpd, "sleep 2"}));
  }
}

TEST_F(AfpTest, AdvertisementsFollowTheSettings) {
  const std::string http = kHttp;
  struct Case {
    const char* enabled;
    const char* tm_share;
    std::string expected;
  };
  const Case cases[] = {
      {"no", "Backup", http},
      {"yes", "", http + kAfp},
      {"yes", "Gone", http + kAfp},
      // The share is found in any letter case and told as the settings have it.
      {"yes", "backup", http + kTimeMachine + kAfp},
  };
  for (const Case& c : cases) {
    set_up_server(c.enabled, c.tm_share);
    EXPECT_EQ(ResetmDNSConf(), 0);
    EXPECT_EQ(read(kResponder), c.expected);
  }
}

TEST_F(AfpTest, ResponderStaysStoppedWithoutANameOrAPort) {
  for (const char* device : {"disk_server_name=NAS\n", "disk_server_name=\nport=80\n"}) {
    set_up_server("yes", "", device);
    const Snapshot before = snapshot();
    EXPECT_EQ(ResetmDNSConf(), -1) << device;
    EXPECT_EQ(commands().back(), kKillResponder);
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(AfpTest, RestartRunsBehindTheCallersBack) {
  set_up_server("yes", "");
  at_sleep(1, note_process_state("/tmp/state"));
  std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(ResetAFP(), 0u);
  EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), SIG_DFL);
  wait_for_background();
  EXPECT_EQ(read("/tmp/state"), "folder /, umask 0, session own, SIGCHLD default, 0-63 closed");
  EXPECT_EQ(commands(), Strings({"sleep 5", "/bin/killall [afpd]", kCopyAfpd, kCopyAfpd, "sleep 2",
                                 "/usr/sbin/afpd", kKillResponder, "sleep 3", kKillResponder,
                                 "sleep 5", "/sbin/mDNSResponder"}));
  EXPECT_EQ(read(kAfpd), "NAS -uamlist uams_dhx.so -unixcodepage UTF8 -maccodepage \"UTF8-MAC\" ");

  set_up_server("no", "");
  clear_commands();
  EXPECT_EQ(ResetAFP(), 0u);
  wait_for_background();
  EXPECT_EQ(commands()[2], kKillResponder) << "no daemon is started";
}

// A page that calls ResetAFP has to expect to go on twice.
TEST_F(AfpTest, FailureInTheBackgroundComesOutOfTheCall) {
  set_up_server("yes", "");
  fail_command("cp", 0);
  const pid_t caller = getpid();
  const unsigned result = ResetAFP();
  if (getpid() != caller) {
    write("/tmp/second", std::to_string(result));
    _exit(0);
  }
  EXPECT_EQ(result, 0u);
  wait_for_background();
  EXPECT_EQ(read("/tmp/second"), "19");
  EXPECT_EQ(commands(), Strings({"sleep 5", "/bin/killall [afpd]", kCopyAfpd, kCopyAfpd}));
}

TEST_F(AfpTest, DebugLinesAreAppended) {
  debug_afp("%s %d", "share", 3);
  debug_afp("%s", std::string(5000, 'x').c_str());
  EXPECT_EQ(read("/var/glb_dbg"),
            "afp:debug_afp():[23]:share 3\nafp:debug_afp():[23]:" + std::string(5000, 'x') + "\n");
}

}  // namespace
