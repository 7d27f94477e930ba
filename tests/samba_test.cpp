/* Samba's global settings, its daemons, and text as it compares it. */
#include "platform/samba/samba.h"

#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/device_test.h"

namespace {

constexpr char kConf[] = "/etc/samba/smb.conf";
const Strings kNothingRan = {"/bin/killall [smbd]", "/bin/killall [nmbd]"};
const Strings kStarted = {"/bin/killall [smbd]", "/bin/killall [nmbd]", "/usr/sbin/smbd [-D]",
                          "/usr/sbin/nmbd [-D]"};

class SambaTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    fail_command("killall", 0); /* no daemon runs */
  }
};

SambaServerParams enabled() {
  SambaServerParams params = {};
  strcpy(params.state, "enable");
  strcpy(params.server_comment, "Files of the house");
  strcpy(params.workgroup, "HOME GROUP");
  strcpy(params.code_page, "850");
  strcpy(params.printer_name, "Laser");
  strcpy(params.printer_comment, "In the hall");
  strcpy(params.wins_server, "192.168.1.250");
  return params;
}

TEST_F(SambaTest, WritesItsKeysAndLeavesEveryOtherLineAlone) {
  write(kConf,
        "; ours\n[Global]\n  workgroup = OLD\r\nSecurity = user\n#comment=\nserver string=x\n\n"
        "[photos]\nworkgroup=y\ncomment=Pictures\n");
  const SambaServerParams params = enabled();
  EXPECT_EQ(SMBSetSamba(&params), 0);
  EXPECT_EQ(read(kConf),
            "; ours\n[Global]\nworkgroup=HOME GROUP\r\nSecurity = user\n#comment=\n"
            "server string=Files of the house\ndos charset=CP850\nprinter name=Laser\n"
            "comment=In the hall\nwins server=192.168.1.250\n\n"
            "[photos]\nworkgroup=y\ncomment=Pictures\n");
  EXPECT_EQ(commands(), kStarted);
  EXPECT_TRUE(std::filesystem::is_symlink(kConf));
}

TEST_F(SambaTest, ReadsFieldsByTheirSizeAndDropsWhatWouldJoinTheNextLine) {
  SambaServerParams params;
  memset(&params, 'x', sizeof params);
  memcpy(params.state, "enable\0", sizeof params.state);
  memcpy(params.code_page, "437\0\0", sizeof params.code_page);
  memcpy(params.printer_comment + 77, " \\\\ ", 4);
  write(kConf, "");
  EXPECT_EQ(SMBSetSamba(&params), 0);
  EXPECT_EQ(read(kConf), "[global]\nserver string=" + std::string(49, 'x') +
                             "\nworkgroup=" + std::string(16, 'x') +
                             "\ndos charset=CP437\nprinter name=" + std::string(21, 'x') +
                             "\ncomment=" + std::string(77, 'x') +
                             "\nwins server=" + std::string(16, 'x') + "\n");
}

TEST_F(SambaTest, NamesACharsetThatSambaCanUse) {
  const std::pair<const char*, const char*> code_pages[] = {
      {"932", "CP932"}, {"950", "CP950"},   {"866", "CP866"},  {"", "CP850"},
      {"x", "CP850"},   {"99999", "CP850"}, {"65001", "CP850"}};
  for (const auto& [code_page, charset] : code_pages) {
    SambaServerParams params = enabled();
    strcpy(params.code_page, code_page);
    write(kConf, "[global]\ndos charset=x\n");
    EXPECT_EQ(SMBSetSamba(&params), 0);
    EXPECT_EQ(read(kConf).substr(0, read(kConf).find("\nserver")),
              std::string("[global]\ndos charset=") + charset);
  }
}

TEST_F(SambaTest, DisablingEndsTheDaemonsAndLeavesTheKeys) {
  const Snapshot before = snapshot();
  SambaServerParams params = {};
  strcpy(params.state, "disable");
  EXPECT_EQ(SMBSetSamba(&params), 0);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), kNothingRan);
}

TEST_F(SambaTest, WaitsForARunningDaemonAndKillsItAfterTenSeconds) {
  clear_commands();
  std::filesystem::remove("/run/stand_in/killall");
  fail_command("killall", 3); /* smbd ends within the first second, nmbd never */
  SambaServerParams params = {};
  strcpy(params.state, "disable");
  EXPECT_EQ(SMBSetSamba(&params), 0);
  Strings want = {"/bin/killall [smbd]", "/bin/killall [-0] [smbd]", "sleep 1",
                  "/bin/killall [-0] [smbd]", "/bin/killall [nmbd]"};
  for (int second = 0; second < 10; ++second) {
    want.insert(want.end(), {"/bin/killall [-0] [nmbd]", "sleep 1"});
  }
  want.emplace_back("/bin/killall [-9] [nmbd]");
  EXPECT_EQ(commands(), want);
}

TEST_F(SambaTest, ADaemonThatDoesNotStartIsAFailureAndTheOtherRuns) {
  for (const char* daemon : {"smbd", "nmbd"}) {
    clear_commands();
    fail_command(daemon, 1);
    const SambaServerParams params = enabled();
    EXPECT_EQ(SMBSetSamba(&params), -1) << daemon;
    EXPECT_EQ(commands(), kStarted) << daemon;
  }
}

TEST_F(SambaTest, WhatItRefusesChangesAndRunsNothing) {
  std::filesystem::remove(kConf);
  std::filesystem::create_directory(kConf);
  const Snapshot before = snapshot();
  SambaServerParams params = enabled();
  EXPECT_EQ(SMBSetSamba(&params), -1) << "no file";
  strcpy(params.state, "on");
  EXPECT_EQ(SMBSetSamba(&params), -1);
  EXPECT_EQ(SMBSetSamba(nullptr), -1);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(SambaTest, TellsTheStatusToACallerThatIgnoresChildren) {
  (void)signal(SIGCHLD, SIG_IGN);
  const SambaServerParams params = enabled();
  EXPECT_EQ(SMBSetSamba(&params), 0);
  EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN) << "the caller's action is back";
}

TEST(SambaText, ComparesLettersWithoutCaseAndBytesAsTheyAre) {
  const std::pair<const char*, const char*> equal[] = {
      {"", ""},
      {"Music~1 [x]", "mUSIC~1 [X]"},
      {"\u00C4\u00D6\u00DC\u0160\u0178\u017D", "\u00E4\u00F6\u00FC\u0161\u00FF\u017E"},
      {"\u0386\u03A3\u03A9", "\u03AC\u03C2\u03C9"},
      {"\u0401\u042F\u0490", "\u0451\u044F\u0491"},
      {"\u1EA4\uFF21", "\u1EA5\uFF41"},
      {"\xFF\xC3", "\xFF\xC3"},
  };
  for (const auto& [text1, text2] : equal) EXPECT_EQ(strequal(text1, text2), 1) << text1;
  const std::pair<const char*, const char*> different[] = {
      {"a", "ab"},          {"[", "{"},         {"@", "`"},
      {"\u00D7", "\u00F7"}, /* signs between the letters of Latin-1 */
      {"\u0130", "\u0131"}, /* a capital and a small letter, of different letters */
      {"\u00C4", "A"},      {"\u00C4", "\xC4"}, {"\xC1\x81", "a"}, /* too long a form of "A" */
      {"\xE1", "\xC1"},     {"a", nullptr},
  };
  for (const auto& [text1, text2] : different) EXPECT_EQ(strequal(text1, text2), 0) << text1;
  EXPECT_EQ(strequal(nullptr, nullptr), 1);
}

TEST(SambaText, FindsCharactersAndNeverPartsOfThem) {
  struct Search {
    const char* text;
    int character;
    int at; /* -1: not found */
  };
  const Search searches[] = {{"\u00E4/b/", '/', 2},  {"abc", '/', -1},     {"abc", '\0', 3},
                             {"", '/', -1},          {"x\u00E4", 0xE4, 1}, {"\u00E4", 0xA4, -1},
                             {"\xE3\x81/x", '/', 2}, {"\xF0/", '/', 1},    {"\u3042/", 0x3042, 0},
                             {"\u00C3", -0x3D, -1},  {"/", '/', 0}};
  for (const Search& search : searches) {
    const char* const found = strchr_m(search.text, search.character);
    EXPECT_EQ(found ? found - search.text : -1, search.at) << search.text;
  }
}

}  // namespace
