/* Samba's global settings, its daemons, and text as it compares it. */
#include "platform/samba/samba.h"

#include <csignal>
#include <cstring>
#include <filesystem>

#include "tests/device_test.h"

namespace {

constexpr char kConf[] = "/etc/samba/smb.conf";
const Strings kStarted = {"/bin/killall [smbd]", "/bin/killall [nmbd]", "/usr/sbin/smbd [-D]",
                          "/usr/sbin/nmbd [-D]"};

class SambaTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    fail_command("killall", 0); /* no daemon runs */
  }

  SambaServerParams params_ = {"enable", "Files of the house", "HOME GROUP",   "932",
                               "Laser",  "In the hall",        "192.168.1.250"};
};

TEST_F(SambaTest, WritesItsKeysAndLeavesEveryOtherLineAlone) {
  write(kConf,
        "; ours\n[Global]\n  workgroup = OLD\r\nSecurity = user\n#comment=\nserver string=x\n\n"
        "[photos]\nworkgroup=y\ncomment=Pictures\n");
  (void)signal(SIGCHLD, SIG_IGN); /* the commands' statuses are told all the same */
  EXPECT_EQ(SMBSetSamba(&params_), 0);
  EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN) << "the caller's action is back";
  EXPECT_EQ(read(kConf),
            "; ours\n[Global]\nworkgroup=HOME GROUP\r\nSecurity = user\n#comment=\n"
            "server string=Files of the house\ndos charset=CP932\nprinter name=Laser\n"
            "comment=In the hall\nwins server=192.168.1.250\n\n"
            "[photos]\nworkgroup=y\ncomment=Pictures\n");
  EXPECT_EQ(commands(), kStarted);
  EXPECT_TRUE(std::filesystem::is_symlink(kConf));
}

TEST_F(SambaTest, ReadsFieldsByTheirSizeAndDropsWhatWouldJoinTheNextLine) {
  memset(&params_, 'x', sizeof params_);
  memcpy(params_.state, "enable\0", sizeof params_.state);
  memcpy(params_.code_page, "65001", sizeof params_.code_page); /* one that clients can not have */
  memcpy(params_.printer_comment + 77, " \\\\ ", 4);
  write(kConf, "");
  EXPECT_EQ(SMBSetSamba(&params_), 0);
  EXPECT_EQ(read(kConf), "[global]\nserver string=" + std::string(49, 'x') +
                             "\nworkgroup=" + std::string(16, 'x') +
                             "\ndos charset=CP850\nprinter name=" + std::string(21, 'x') +
                             "\ncomment=" + std::string(77, 'x') +
                             "\nwins server=" + std::string(16, 'x') + "\n");
}

TEST_F(SambaTest, DisablingWaitsForTheDaemonsToEndAndKillsThemAfterTenSeconds) {
  std::filesystem::remove("/run/stand_in/killall");
  fail_command("killall", 3); /* smbd ends within the first second, nmbd never */
  const Snapshot before = snapshot();
  strcpy(params_.state, "disable");
  EXPECT_EQ(SMBSetSamba(&params_), 0);
  Strings want = {"/bin/killall [smbd]", "/bin/killall [-0] [smbd]", "sleep 1",
                  "/bin/killall [-0] [smbd]", "/bin/killall [nmbd]"};
  for (int second = 0; second < 10; ++second) {
    want.insert(want.end(), {"/bin/killall [-0] [nmbd]", "sleep 1"});
  }
  want.emplace_back("/bin/killall [-9] [nmbd]");
  EXPECT_EQ(commands(), want);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(SambaTest, WhatItRefusesRunsNothing) {
  std::filesystem::remove(kConf);
  std::filesystem::create_directory(kConf);
  EXPECT_EQ(SMBSetSamba(&params_), -1) << "no file";
  strcpy(params_.state, "on");
  EXPECT_EQ(SMBSetSamba(&params_), -1);
  EXPECT_EQ(commands(), Strings());
}

TEST(SambaText, ComparesLettersWithoutCaseAndBytesAsTheyAre) {
  const std::tuple<const char*, const char*, int> pairs[] = {
      {"Music~1 [x]\u00C4\u0178\u1EA4\uFF21", "mUSIC~1 [X]\u00E4\u00FF\u1EA5\uFF41", 1},
      {"\u0386\u03A3\u03A9\u0401\u042F\u0490", "\u03AC\u03C2\u03C9\u0451\u044F\u0491", 1},
      {"\xFF\xC3", "\xFF\xC3", 1},
      {"@", "`", 0},
      {"\u00D7", "\u00F7", 0}, /* signs between the letters of Latin-1 */
      {"\u0130", "\u0131", 0}, /* a capital and a small letter, of different letters */
      {"\xE1", "\xC1", 0},
      {"\xC1\x81", "a", 0}, /* too long a form of "A" */
  };
  for (const auto& [text1, text2, equal] : pairs) EXPECT_EQ(strequal(text1, text2), equal) << text1;
}

TEST(SambaText, FindsCharactersAndNeverPartsOfThem) {
  const std::tuple<const char*, int, int> searches[] = {
      {"\u00E4/b/", '/', 2}, {"abc", '/', -1},       {"abc", '\0', 3},  {"x\u00E4", 0xE4, 1},
      {"\u00E4", 0xA4, -1},  {"\xE3\x81/x", '/', 2}, {"\xF0/", '/', 1}, {"\u00C3", -0x3D, -1}};
  for (const auto& [text, character, at] : searches) {
    const char* const found = strchr_m(text, character);
    EXPECT_EQ(found ? found - text : -1, at) << text;
  }
}

}  // namespace
