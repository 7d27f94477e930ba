/* Samba's settings: what is refused, what is saved, and how Samba follows. */
#include <cstring>
#include <filesystem>
#include <functional>

#include "filesharing/services.h"
#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kConf[] = "/etc/samba/smb.conf";
constexpr char kLock[] = "/tmp/samba.lck";

/* The text with the only `from` in it replaced. */
std::string with(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  EXPECT_EQ(text.find(from, at + 1), std::string::npos) << from;
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class SambaServiceTest : public DeviceTest {
 protected:
  static void set(const std::string& from, const std::string& to) {
    write(kSettings, with(read(kSettings), "\n" + from + "\n", "\n" + to + "\n"));
  }
  static void remove(const std::string& line) {
    write(kSettings, with(read(kSettings), "\n" + line + "\n", "\n"));
  }
};

using Change = std::function<void(SambaSettings&)>;

SambaSettings valid() {
  SambaSettings settings = {};
  strcpy(settings.msn_enable, "yes");
  settings.code_page = 850;
  strcpy(settings.wins_enable, "yes");
  strcpy(settings.wins_server, "192. 168. 1. 1");
  strcpy(settings.w_d_name, "HOME GROUP");
  strcpy(settings.printer_name, "Laser");
  return settings;
}

TEST(OmitIpSpace, DropsBlanksAmongTheFirstCharactersAndNothingElse) {
  struct Case {
    const char* text;
    int length;
    const char* want;
  };
  const Case cases[] = {{" 1 .2. 3 ", 9, "1.2.3"}, {" 1 .2. 3 ", 4, "1."}, {"1\t2\n", 4, "1\t2\n"},
                        {"1 2", 1000, "12"},       {"12", 0, ""},          {"12", -1, ""}};
  for (const Case& one : cases) {
    char text[16] = "???????????????";
    omitIpSpace(text, one.text, one.length);
    EXPECT_STREQ(text, one.want) << one.text << ' ' << one.length;
  }
}

TEST_F(SambaServiceTest, ReadsUpToTheFirstKeyThatIsMissing) {
  SambaSettings settings = {};
  EXPECT_EQ(ReadSambaConf(&settings), 0u);
  const char* lines[] = {"msn_enable=yes", "w_d_name=WORKGROUP", "code_page=437",
                         "wins_enable=no", "wins_server=",       "printer_name=lp"};
  for (int missing = 0; missing < 6; ++missing) {
    const std::string before = read(kSettings);
    remove(lines[missing]);
    settings = {};
    EXPECT_EQ(ReadSambaConf(&settings), 11u) << lines[missing];
    EXPECT_STREQ(settings.msn_enable, missing > 0 ? "yes" : "");
    EXPECT_STREQ(settings.w_d_name, missing > 1 ? "WORKGROUP" : "");
    EXPECT_EQ(settings.code_page, missing > 2 ? 437 : 0);
    EXPECT_STREQ(settings.wins_enable, missing > 3 ? "no" : "");
    EXPECT_STREQ(settings.printer_name, "");
    write(kSettings, before);
  }
  fs::remove(kSettings);
  EXPECT_EQ(ReadSambaConf(&settings), 11u);
  EXPECT_EQ(ReadSambaConf(nullptr), 20u);
}

TEST_F(SambaServiceTest, ReadsAsManyCharactersAsTheFieldsHold) {
  set("msn_enable=yes", "msn_enable=12345");
  set("w_d_name=WORKGROUP", "w_d_name=1234567890123456789");
  set("wins_enable=no", "wins_enable=12345");
  set("wins_server=", "wins_server=1234567890123456789");
  set("printer_name=lp", "printer_name=12345678901234567890123");
  SambaSettings settings = {};
  EXPECT_EQ(ReadSambaConf(&settings), 0u);
  EXPECT_STREQ(settings.msn_enable, "1234");
  EXPECT_STREQ(settings.w_d_name, "1234567890123456");
  EXPECT_STREQ(settings.wins_enable, "1234");
  EXPECT_STREQ(settings.wins_server, "1234567890123456");
  EXPECT_STREQ(settings.printer_name, "12345678901234567890");
}

TEST_F(SambaServiceTest, RefusesWithTheCodeOfTheFirstCheckThatFails) {
  struct Case {
    const char* name;
    unsigned code;
    Change change;
  };
  const Case cases[] = {
      {"switch", 2, [](SambaSettings& s) { strcpy(s.msn_enable, "Yes"); }},
      {"switch, before a bad name", 2,
       [](SambaSettings& s) { s = {}, strcpy(s.w_d_name, "a/b"), strcpy(s.printer_name, "a/b"); }},
      {"a name with both faults", 7, [](SambaSettings& s) { strcpy(s.w_d_name, "\xC3\xA4."); }},
      {"multibyte", 6, [](SambaSettings& s) { strcpy(s.w_d_name, "\xC3\xA4"); }},
      {"no workgroup, before the WINS switch", 8,
       [](SambaSettings& s) { s.w_d_name[0] = 0, strcpy(s.wins_enable, "on"); }},
      {"WINS switch, before its server", 3,
       [](SambaSettings& s) {
         strcpy(s.wins_enable, "on"), strcpy(s.wins_server, "255.255.255.255");
       }},
      {"no server", 4, [](SambaSettings& s) { s.wins_server[0] = 0; }},
      {"blanks for a server", 4, [](SambaSettings& s) { strcpy(s.wins_server, "   "); }},
      {"dots for a server", 4, [](SambaSettings& s) { strcpy(s.wins_server, ". . ."); }},
      {"zeros for a server", 4, [](SambaSettings& s) { strcpy(s.wins_server, "0. 0.0.0"); }},
      {"broadcast though WINS is off", 5,
       [](SambaSettings& s) {
         strcpy(s.wins_enable, "no"), strcpy(s.wins_server, "255.255.255.255");
       }},
      {"broadcast behind a blank", 5,
       [](SambaSettings& s) { strcpy(s.wins_server, " 255.255.255.255"); }},
      {"a word", 5, [](SambaSettings& s) { strcpy(s.wins_server, "server"); }},
      {"server, before a bad printer", 5,
       [](SambaSettings& s) { strcpy(s.wins_server, "1.2.3.256"), strcpy(s.printer_name, "/"); }},
      {"a printer with both faults", 9,
       [](SambaSettings& s) { strcpy(s.printer_name, "\xC3\xA4 x"); }},
      {"multibyte printer", 10, [](SambaSettings& s) { strcpy(s.printer_name, "\xC3\xA4"); }},
  };
  const Snapshot before = snapshot();
  for (const Case& one : cases) {
    SambaSettings settings = valid();
    one.change(settings);
    EXPECT_EQ(SaveSambaConf(&settings), one.code) << one.name;
    EXPECT_EQ(changes(before), Strings()) << one.name;
  }
}

TEST_F(SambaServiceTest, RefusesServersByTheirFirstNumber) {
  const std::pair<const char*, unsigned> servers[] = {
      {"1.0.0.1", 0},   {"126.0.0.1", 0}, {"128.0.0.1", 0}, {"223.0.0.1", 0}, {"240.0.0.1", 0},
      {"254.0.0.1", 0}, {"0.0.0.1", 5},   {"127.0.0.1", 5}, {"224.0.0.1", 5}, {"239.0.0.1", 5},
      {"255.0.0.1", 5}, {".1.1.1", 5},    {"256.0.0.1", 5}, {"127", 0}, /* no dot */
  };
  for (const auto& [server, code] : servers) {
    SambaSettings settings = valid();
    strcpy(settings.wins_server, server);
    EXPECT_EQ(SaveSambaConf(&settings), code) << server;
  }
}

TEST_F(SambaServiceTest, RefusesTheCharactersThatSambaAndItsPrintersCanNotHave) {
  const std::string in_workgroup = "\"/\\[]:;|=.,+*?<>";
  const std::string in_printer_name = in_workgroup + " '`";
  for (int character = 1; character < 128; ++character) {
    const char name[] = {'a', static_cast<char>(character), '\0'};
    const auto in = [&](const std::string& set) { return set.find(name[1]) != set.npos; };
    if (character == '\n' || character == '\r') continue; /* no line of the settings file */
    SambaSettings settings = valid();
    strcpy(settings.w_d_name, name);
    EXPECT_EQ(SaveSambaConf(&settings), in(in_workgroup) ? 7u : 0u) << character;
    settings = valid();
    strcpy(settings.printer_name, name);
    EXPECT_EQ(SaveSambaConf(&settings), in(in_printer_name) ? 9u : 0u) << character;
  }
}

TEST_F(SambaServiceTest, SavesTheSixKeysInTheirPlacesAndTheAddressWithoutBlanks) {
  std::string want = read(kSettings);
  want = with(want, "w_d_name=WORKGROUP", "w_d_name=HOME GROUP");
  want = with(want, "code_page=437", "code_page=850");
  want = with(want, "wins_enable=no", "wins_enable=yes");
  want = with(want, "wins_server=", "wins_server=192.168.1.1");
  want = with(want, "printer_name=lp", "printer_name=Laser");
  const Snapshot before = snapshot();
  SambaSettings settings = valid();
  EXPECT_EQ(SaveSambaConf(&settings), 0u);
  EXPECT_EQ(read(kSettings), want);
  EXPECT_STREQ(settings.wins_server, "192.168.1.1");
  EXPECT_EQ(changes(before), Strings({std::string("~") + kSettings}));
}

TEST_F(SambaServiceTest, SavesNewKeysInTheirOrder) {
  write(kSettings, "[network]\n\n[media]\n");
  SambaSettings settings = {};
  strcpy(settings.msn_enable, "no");
  strcpy(settings.wins_enable, "no");
  settings.code_page = -1;
  EXPECT_EQ(SaveSambaConf(&settings), 0u) << "nothing need be named when all is off";
  EXPECT_EQ(read(kSettings),
            "[network]\nw_d_name=\nmsn_enable=no\ncode_page=-1\nwins_enable=no\nwins_server=\n"
            "printer_name=\n\n[media]\n");
}

TEST_F(SambaServiceTest, ClearsZerosAndKeepsDotsWhenWinsIsOff) {
  const std::pair<const char*, const char*> servers[] = {
      {"0.0. 0.0", ""}, {". ..", "..."}, {"  ", ""}, {"10.0.0.1 ", "10.0.0.1"}};
  for (const auto& [typed, saved] : servers) {
    SambaSettings settings = valid();
    strcpy(settings.wins_enable, "no");
    strcpy(settings.wins_server, typed);
    EXPECT_EQ(SaveSambaConf(&settings), 0u) << typed;
    EXPECT_STREQ(settings.wins_server, saved);
    EXPECT_EQ(ReadSambaConf(&settings), 0u);
    EXPECT_STREQ(settings.wins_server, saved);
  }
}

TEST_F(SambaServiceTest, TidiesTheCallersAddressThoughALaterCheckFails) {
  SambaSettings settings = valid();
  strcpy(settings.wins_server, "0.0.0.0");
  EXPECT_EQ(SaveSambaConf(&settings), 4u);
  EXPECT_STREQ(settings.wins_server, "");
  settings = valid();
  strcpy(settings.printer_name, "a b");
  EXPECT_EQ(SaveSambaConf(&settings), 9u);
  EXPECT_STREQ(settings.wins_server, "192.168.1.1");
}

TEST_F(SambaServiceTest, ReadsNothingBehindFieldsWithoutTerminators) {
  SambaSettings settings;
  memset(&settings, '1', sizeof settings);
  EXPECT_EQ(SaveSambaConf(&settings), 2u);
  strcpy(settings.msn_enable, "yes");
  strcpy(settings.wins_enable, "yes");
  EXPECT_EQ(SaveSambaConf(&settings), 5u);
  strcpy(settings.wins_server, "10.0.0.1");
  EXPECT_EQ(SaveSambaConf(&settings), 0u);
  EXPECT_NE(read(kSettings).find("\nw_d_name=" + std::string(17, '1') + "\n"), std::string::npos);
}

TEST_F(SambaServiceTest, LockComesBeforeEverythingAndGoesOnlyWithTheOneWhoTookIt) {
  SambaSettings settings = valid();
  write(kLock, "");
  const Snapshot before = snapshot();
  EXPECT_EQ(SaveSambaConf(nullptr), 12u);
  EXPECT_EQ(SaveSambaConf(&settings), 12u);
  EXPECT_STREQ(settings.wins_server, "192. 168. 1. 1");
  EXPECT_EQ(changes(before), Strings());
  fs::remove(kLock);
  EXPECT_EQ(SaveSambaConf(nullptr), 20u);
  EXPECT_FALSE(exists(kLock));
}

TEST_F(SambaServiceTest, SettingsThatCanNotBeWrittenReleaseTheLock) {
  fs::remove(kSettings);
  fs::create_directory(kSettings);
  SambaSettings settings = valid();
  EXPECT_EQ(SaveSambaConf(&settings), 12u);
  EXPECT_FALSE(exists(kLock));
}

/* ---- Samba follows ---- */

const Strings kStopped = {"/bin/killall [smbd]", "/bin/killall [nmbd]"};

class SetSmbTest : public SambaServiceTest {
 protected:
  void SetUp() override {
    SambaServiceTest::SetUp();
    fail_command("killall", 0); /* no daemon runs */
    write(kConf, "; Samba\n[global]\nworkgroup = OLD\nvfs object =\n[Music]\nread only=yes\n");
  }
};

TEST_F(SetSmbTest, HandsOverEveryFieldAtItsFullLength) {
  set("w_d_name=WORKGROUP", "w_d_name=ABCDEFGHIJKLMNOP");
  set("code_page=437", "code_page=850");
  set("disk_server_comment=Network disk server", "disk_server_comment=" + std::string(60, 's'));
  set("printer_name=lp", "printer_name=12345678901234567890");
  set("printer_comment=Printer", "printer_comment=" + std::string(90, 'p'));
  set("wins_enable=no", "wins_enable=yes");
  set("wins_server=", "wins_server=192.168.100.200");
  set("recycle=no", "recycle=yesterday");
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(read(kConf),
            "; Samba\n[global]\nworkgroup=ABCDEFGHIJKLMNOP\nvfs object=recycle\n"
            "server string=" +
                std::string(49, 's') +
                "\ndos charset=CP850\nprinter name=12345678901234567890\ncomment=" +
                std::string(81, 'p') + "\nwins server=192.168.100.200\n[Music]\nread only=yes\n");
}

TEST_F(SetSmbTest, ServerOfWinsThatIsOffIsNotHandedOver) {
  set("wins_server=", "wins_server=192.168.1.2");
  set("code_page=437", "code_page=-2147483648"); /* longer than its field */
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(read(kConf),
            "; Samba\n[global]\nworkgroup=WORKGROUP\nvfs object=\n"
            "server string=Network disk server\ndos charset=CP850\nprinter name=lp\n"
            "comment=Printer\nwins server=\n[Music]\nread only=yes\n");
}

TEST_F(SetSmbTest, SwitchedOffSambaOnlyStops) {
  set("msn_enable=yes", "msn_enable=no");
  remove("disk_server_comment=Network disk server");
  remove("recycle=no");
  const Snapshot before = snapshot();
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), kStopped);
  remove("printer_name=lp");
  EXPECT_EQ(SetSMB(), 13u) << "the settings are read all the same";
}

TEST_F(SetSmbTest, MissingSettingStopsBeforeSambaIsTouched) {
  for (const char* line :
       {"wins_server=", "disk_server_comment=Network disk server", "printer_comment=Printer"}) {
    const std::string settings = read(kSettings);
    remove(line);
    const Snapshot before = snapshot();
    EXPECT_EQ(SetSMB(), 13u) << line;
    EXPECT_EQ(changes(before), Strings()) << line;
    write(kSettings, settings);
  }
  EXPECT_EQ(commands(), Strings());
}

TEST_F(SetSmbTest, RecycleBinIsReadAfterSambaIsSet) {
  remove("recycle=no");
  EXPECT_EQ(SetSMB(), 13u);
  EXPECT_NE(read(kConf).find("workgroup=WORKGROUP\nvfs object =\n"), std::string::npos);
  EXPECT_EQ(commands().size(), 4u) << "the daemons run";
}

TEST_F(SetSmbTest, SambaThatDoesNotStartKeepsItsRecycleBin) {
  set("recycle=no", "recycle=yes");
  fail_command("smbd", 1);
  EXPECT_EQ(SetSMB(), 13u);
  EXPECT_NE(read(kConf).find("vfs object =\n"), std::string::npos);
}

TEST_F(SetSmbTest, RecycleBinThatCanNotBeWrittenIsNoFailure) {
  fs::remove("/run/stand_in/killall"); /* the daemons run, so that they are waited for */
  at_sleep(1, [] {
    fs::remove(kConf);
    fs::create_directory(kConf);
  });
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_TRUE(fs::is_directory(kConf));
}

/* ---- Guests and printers ---- */

TEST_F(SambaServiceTest, GuestsSwitchTheMappingOfNamesOff) {
  const std::pair<const char*, const char*> cases[] = {
      {"yes", "no"}, {"no", "/etc/samba/smbusers"}, {"yesx", "/etc/samba/smbusers"}};
  for (const auto& [guest_access, map] : cases) {
    write(kSettings, std::string("[network]\nguest_access=") + guest_access + "\n");
    write(kConf, "[global]\nusername map = x\n[Music]\n");
    EXPECT_EQ(ResetGuest(), 0u);
    EXPECT_EQ(read(kConf), std::string("[global]\nusername map=") + map + "\n[Music]\n");
  }
}

TEST_F(SambaServiceTest, PrintersAreSetOnlyWhileTheFirstVolumeIsMounted) {
  write(kSettings, "[network]\nprinter_icon=yes or no\n");
  const std::string before = read(kConf);
  EXPECT_EQ(ResetPrinter(), 0u);
  EXPECT_EQ(read(kConf), with(before, "\nload printers = no\n", "\nload printers=yes \n"));
  unmount_volume(1);
  mount_volume(2);
  fs::remove(kConf);
  write(kConf, "[global]\n");
  EXPECT_EQ(ResetPrinter(), 0u);
  EXPECT_EQ(read(kConf), "[global]\n");
}

TEST_F(SambaServiceTest, GuestsAndPrintersTellWhatFailed) {
  fs::remove(kConf);
  fs::create_directory(kConf);
  EXPECT_EQ(ResetGuest(), 56u);
  EXPECT_EQ(ResetPrinter(), 57u);
  write(kSettings, "[network]\n");
  EXPECT_EQ(ResetGuest(), 56u);
  EXPECT_EQ(ResetPrinter(), 57u);
  fs::remove(kSettings);
  EXPECT_EQ(ResetGuest(), 21u);
  EXPECT_EQ(ResetPrinter(), 21u);
}

}  // namespace
