/* Samba's settings: what is refused, what is saved, and how Samba follows. */
#include <cstring>
#include <filesystem>

#include "filesharing/services.h"
#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSettings[] = "/etc/CGI_ds.conf";
constexpr char kConf[] = "/etc/samba/smb.conf";
constexpr char kLock[] = "/tmp/samba.lck";

class SambaServiceTest : public DeviceTest {
 protected:
  /* Replaces a line of the settings file. */
  static void set(const std::string& line, const std::string& to) {
    std::string text = read(kSettings);
    const size_t at = text.find("\n" + line + "\n");
    ASSERT_NE(at, std::string::npos) << line;
    write(kSettings, text.replace(at + 1, line.size() + 1, to));
  }
};

/* The texts of a record in the order of its fields, but for the code page. */
struct Texts {
  const char* msn_enable = "yes";
  const char* wins_enable = "yes";
  const char* wins_server = "192. 168. 1. 1";
  const char* w_d_name = "HOME GROUP";
  const char* printer_name = "Laser";
};

SambaSettings record(const Texts& texts) {
  SambaSettings settings = {};
  strcpy(settings.msn_enable, texts.msn_enable);
  settings.code_page = 850;
  strcpy(settings.wins_enable, texts.wins_enable);
  strcpy(settings.wins_server, texts.wins_server);
  strcpy(settings.w_d_name, texts.w_d_name);
  strcpy(settings.printer_name, texts.printer_name);
  return settings;
}

unsigned save(const Texts& texts) {
  SambaSettings settings = record(texts);
  return SaveSambaConf(&settings);
}

std::string text(const SambaSettings& s) {
  return std::string(s.msn_enable) + '|' + s.w_d_name + '|' + std::to_string(s.code_page) + '|' +
         s.wins_enable + '|' + s.wins_server + '|' + s.printer_name;
}

TEST(OmitIpSpace, DropsBlanksAmongTheFirstCharactersAndNothingElse) {
  const std::pair<int, const char*> cases[] = {
      {-1, ""}, {0, ""}, {4, "1."}, {8, "1.\t2"}, {1000, "1.\t2."}};
  for (const auto& [length, want] : cases) {
    char text[16] = "???????????????";
    omitIpSpace(text, " 1 . \t 2.", length);
    EXPECT_STREQ(text, want) << length;
  }
}

TEST_F(SambaServiceTest, ReadsUpToTheFirstKeyThatIsMissing) {
  const std::pair<const char*, const char*> cases[] = {
      {"msn_enable=yes", "||0|||"},
      {"w_d_name=WORKGROUP", "yes||0|||"},
      {"code_page=437", "yes|WORKGROUP|0|||"},
      {"wins_enable=no", "yes|WORKGROUP|437|||"},
      {"printer_name=lp", "yes|WORKGROUP|437|no||"}};
  for (const auto& [line, want] : cases) {
    SetUp();
    set(line, "");
    SambaSettings settings = {};
    EXPECT_EQ(ReadSambaConf(&settings), 11u) << line;
    EXPECT_EQ(text(settings), want);
  }
}

TEST_F(SambaServiceTest, ReadsAsManyCharactersAsTheFieldsHold) {
  const std::string digits = "1234567890123456789012345";
  write(kSettings, "[network]\nmsn_enable=" + digits + "\nw_d_name=" + digits +
                       "\ncode_page=1\nwins_enable=" + digits + "\nwins_server=" + digits +
                       "\nprinter_name=" + digits + "\n");
  SambaSettings settings = {};
  EXPECT_EQ(ReadSambaConf(&settings), 0u);
  EXPECT_EQ(text(settings), "1234|1234567890123456|1|1234|1234567890123456|12345678901234567890");
}

TEST_F(SambaServiceTest, RefusesWithTheCodeOfTheFirstCheckThatFails) {
  const char broadcast[] = "255.255.255.255";
  const std::pair<unsigned, Texts> cases[] = {
      {2, {.msn_enable = "Yes", .w_d_name = "a/b"}},
      {7, {.wins_enable = "on", .w_d_name = "\xC3\xA4."}},
      {6, {.w_d_name = "\xC3\xA4"}},
      {8, {.wins_enable = "on", .w_d_name = ""}},
      {3, {.wins_enable = "on", .wins_server = broadcast}},
      {4, {.wins_server = ". . ."}},
      {4, {.wins_server = "0. 0.0.0", .printer_name = "/"}},
      {5, {.wins_enable = "no", .wins_server = broadcast}},
      {5, {.wins_server = " 255.255.255.255"}},
      {5, {.wins_server = "1.2.3.256", .printer_name = "/"}},
      {9, {.printer_name = "\xC3\xA4 x"}},
      {10, {.printer_name = "\xC3\xA4"}},
  };
  const Snapshot before = snapshot();
  for (const auto& [code, texts] : cases) {
    EXPECT_EQ(save(texts), code) << text(record(texts));
    EXPECT_EQ(changes(before), Strings());
  }
}

TEST_F(SambaServiceTest, RefusesServersByTheirFirstNumber) {
  for (const char* server : {"1.0.0.1", "126.0.0.1", "128.0.0.1", "223.0.0.1", "254.0.0.1", "127"})
    EXPECT_EQ(save({.wins_server = server}), 0u) << server;
  for (const char* server : {"0.0.0.1", "127.0.0.1", "224.0.0.1", "239.0.0.1", "255.0.0.1"})
    EXPECT_EQ(save({.wins_server = server}), 5u) << server;
}

TEST_F(SambaServiceTest, RefusesTheCharactersThatSambaAndItsPrintersCanNotHave) {
  const std::string in_workgroup = "\"/\\[]:;|=.,+*?<>";
  const std::string in_printer_name = in_workgroup + " '`";
  for (char character = ' '; character < 127; ++character) {
    const char name[] = {'a', character, '\0'};
    const auto in = [&](const std::string& set) { return set.find(character) != set.npos; };
    EXPECT_EQ(save({.w_d_name = name}), in(in_workgroup) ? 7u : 0u) << name;
    EXPECT_EQ(save({.printer_name = name}), in(in_printer_name) ? 9u : 0u) << name;
  }
}

TEST_F(SambaServiceTest, SavesItsKeysInTheirOrder) {
  write(kSettings, "[network]\nmsn_enable=no\n\n[media]\n");
  SambaSettings settings = record({});
  memset(settings.printer_name, 'p', sizeof settings.printer_name); /* without a terminator */
  EXPECT_EQ(SaveSambaConf(&settings), 0u);
  EXPECT_EQ(read(kSettings),
            "[network]\nmsn_enable=yes\nw_d_name=HOME GROUP\ncode_page=850\nwins_enable=yes\n"
            "wins_server=192.168.1.1\nprinter_name=ppppppppppppppppppppp\n\n[media]\n");
  EXPECT_EQ(save({"no", "no", "", "", ""}), 0u) << "nothing need be named when all is off";
}

TEST_F(SambaServiceTest, TidiesTheAddressInTheCallersRecordThoughALaterCheckFails) {
  const std::pair<const char*, const char*> servers[] = {
      {"0.0. 0.0", ""}, {". ..", "..."}, {"10.0.0.1 ", "10.0.0.1"}};
  for (const auto& [typed, tidied] : servers) {
    SambaSettings settings =
        record({.wins_enable = "no", .wins_server = typed, .printer_name = "a b"});
    EXPECT_EQ(SaveSambaConf(&settings), 9u);
    EXPECT_STREQ(settings.wins_server, tidied);
  }
}

TEST_F(SambaServiceTest, LockComesBeforeEverythingAndGoesOnlyWithTheOneWhoTookIt) {
  write(kLock, "");
  const Snapshot before = snapshot();
  EXPECT_EQ(SaveSambaConf(nullptr), 12u);
  EXPECT_EQ(changes(before), Strings());
  fs::remove(kLock);
  EXPECT_EQ(SaveSambaConf(nullptr), 20u);
  fs::remove(kSettings);
  fs::create_directory(kSettings);
  EXPECT_EQ(save({}), 12u);
  EXPECT_FALSE(exists(kLock));
}

/* ---- Samba follows ---- */

class SetSmbTest : public SambaServiceTest {
 protected:
  void SetUp() override {
    SambaServiceTest::SetUp();
    fail_command("killall", 0); /* no daemon runs */
    write(kConf, "; Samba\n[global]\nworkgroup = OLD\nvfs object =\n[Music]\nread only=yes\n");
  }
};

TEST_F(SetSmbTest, HandsOverWhatFitsAndNoServerOfWinsThatIsOff) {
  const std::string long_text(100, 'x');
  set("wins_server=", "wins_server=192.168.1.2\n");
  set("code_page=437", "code_page=-2147483648\n"); /* longer than its field */
  set("recycle=no", "recycle=yesterday\n");
  set("disk_server_comment=Network disk server", "disk_server_comment=" + long_text + "\n");
  set("printer_comment=Printer", "printer_comment=" + long_text + "\n");
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(read(kConf),
            "; Samba\n[global]\nworkgroup=WORKGROUP\nvfs object=recycle\nserver string=" +
                long_text.substr(0, 49) + "\ndos charset=CP850\nprinter name=lp\ncomment=" +
                long_text.substr(0, 81) + "\nwins server=\n[Music]\nread only=yes\n");
}

TEST_F(SetSmbTest, SwitchedOffSambaOnlyStops) {
  set("msn_enable=yes", "msn_enable=no\n");
  set("disk_server_comment=Network disk server", "");
  set("recycle=no", "");
  const Snapshot before = snapshot();
  EXPECT_EQ(SetSMB(), 0u);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings({"/bin/killall [smbd]", "/bin/killall [nmbd]"}));
  set("printer_name=lp", "");
  EXPECT_EQ(SetSMB(), 13u) << "the settings are read all the same";
}

/* Only the recycle bin is read after Samba is set. */
TEST_F(SetSmbTest, MissingSettingStopsThere) {
  for (const char* line : {"disk_server_comment=Network disk server", "recycle=no"}) {
    SetUp();
    set(line, "");
    EXPECT_EQ(SetSMB(), 13u) << line;
    const bool is_set =
        read(kConf).find("workgroup=WORKGROUP\nvfs object =\n") != std::string::npos;
    EXPECT_EQ(is_set, strcmp(line, "recycle=no") == 0);
  }
}

/* ---- Guests and printers ---- */

TEST_F(SambaServiceTest, GuestsSwitchTheMappingOfNamesOff) {
  for (const auto& [guests, map] : {std::pair("yes", "no"), {"yesx", "/etc/samba/smbusers"}}) {
    write(kSettings, std::string("[network]\nguest_access=") + guests + "\n");
    write(kConf, "[global]\nusername map = x\n[Music]\n");
    EXPECT_EQ(ResetGuest(), 0u);
    EXPECT_EQ(read(kConf), std::string("[global]\nusername map=") + map + "\n[Music]\n");
  }
}

TEST_F(SambaServiceTest, PrintersAreSetOnlyWhileTheFirstVolumeIsMounted) {
  write(kSettings, "[network]\nprinter_icon=yes or no\n");
  write(kConf, "[global]\n");
  EXPECT_EQ(ResetPrinter(), 0u);
  EXPECT_EQ(read(kConf), "[global]\nload printers=yes \n");
  EXPECT_EQ(ResetGuest(), 56u) << "its key is missing";
  unmount_volume(1);
  mount_volume(2);
  fs::remove(kConf);
  write(kConf, "[global]\n");
  EXPECT_EQ(ResetPrinter(), 0u);
  EXPECT_EQ(read(kConf), "[global]\n");
}

}  // namespace
