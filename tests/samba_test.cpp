/* Samba's global settings, its daemons, and text as it compares it. */
#include "platform/samba/samba.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "platform/profile/profile.h"
#include "tests/device_test.h"

namespace {

constexpr char kConf[] = "/etc/samba/smb.conf";
const Strings kStarted = {"/bin/killall [smbd]", "/bin/killall [nmbd]", "/usr/sbin/smbd [-D]",
                          "/usr/sbin/nmbd [-D]"};

const Strings kInForce = {"comment = In the hall",
                          "dos charset = CP932",
                          "load printers = No",
                          "printer name = Laser",
                          "server string = Files of the house",
                          "username map = /etc/samba/smbusers",
                          "vfs objects = recycle",
                          "wins server = 192.168.1.250",
                          "workgroup = HOME GROUP"};

class SambaTest : public DeviceTest {
 protected:
  /* The keys of kInForce as Samba reads the file: those of "global" that are not its defaults. */
  static Strings in_force() {
    const Outcome told = run({"env", "-u", "LD_PRELOAD", "/usr/bin/testparm", "-s"});
    EXPECT_EQ(told.status, 0) << told.error;
    std::istringstream lines(told.out);
    Strings keys;
    for (std::string line; std::getline(lines, line) && !line.empty();) {
      line.erase(0, line.find_first_not_of('\t'));
      for (const std::string& want : kInForce) {
        if (line.starts_with(want.substr(0, want.find('=')))) keys.push_back(line);
      }
    }
    std::sort(keys.begin(), keys.end());
    return keys;
  }

  void SetUp() override {
    DeviceTest::SetUp();
    fail_command("killall", 0); /* no daemon runs */
  }

  SambaServerParams params_ = {"enable", "Files of the house", "HOME GROUP",   "932",
                               "Laser",  "In the hall",        "192.168.1.250"};
};

/* What SMBSetSamba makes of smb.conf, and what Samba makes of that when the keys that others set
 * have followed. */
TEST_F(SambaTest, WhatItWritesIsInForceAndEveryOtherLineStays) {
  const std::string first = "server string=Files of the house\nworkgroup=HOME GROUP\n";
  const std::string rest =
      "dos charset=CP932\nprinter name=Laser\ncomment=In the hall\nwins server=192.168.1.250\n";
  const std::string others = "vfs object=\nusername map=\nload printers=yes\n";
  const std::tuple<const char*, std::string, std::string> files[] = {
      {"keys in their places, new ones behind the last line; shares, comments",
       "; ours\n[Global]\n  workgroup = OLD\r\nSecurity = user\n#comment=\nserver string=x\n\n"
       "[photos]\nworkgroup=y\ncomment=Pictures\npath=/p\n",
       "; ours\n[Global]\nworkgroup=HOME GROUP\r\nSecurity = user\n#comment=\n"
       "server string=Files of the house\n" +
           rest + "\n[photos]\nworkgroup=y\ncomment=Pictures\npath=/p\n"},
      {"other spellings and synonyms",
       "[global]\nServerString = a\n\tWORK  GROUP=b\nd o s charset =c\nprinter = d\nCOMMENT=e\n"
       "Wins Server = 1.2.3.4\nvfs objects = audit\nUserName Map = /m \nload\tprinters=no",
       "[global]\n" + first + rest + "vfs object=audit\nusername map=/m\nload printers=no"},
      {"repeated keys",
       "[global]\nWorkGroup=A\nvfs objects=a\nworkgroup=B\nserver string=C\nserver string=D\n"
       " vfs object = b\nvfs objects=c\nworkgroup=E\n",
       "[global]\nworkgroup=HOME GROUP\nserver string=Files of the house\n vfs object = b\n" +
           rest},
      {"a second section",
       "[ Global ] x\nworkgroup=A\n[photos]\npath=/p\n[GLOBAL]\nworkgroup=B\nlog level=1\n"
       "Username Map=/m\n [glo bals]\nprinter=lp\n",
       "[ Global ] x\nworkgroup=HOME GROUP\nserver string=Files of the house\n" + rest +
           "username map=/m\n[photos]\npath=/p\n[GLOBAL]\nlog level=1\n [glo bals]\n"},
      {"keys that are missing, or behind an include",
       "[global]\nlog level=1\nWORKGROUP=A\nworkgroup=B\n\nIn Clude = /etc/samba/user_smb.conf\n"
       "comment=C\ninclude=/none\nload printers=no\n",
       "[global]\nlog level=1\nworkgroup=HOME GROUP\n\nserver string=Files of the house\n" + rest +
           "vfs object=\nusername map=\nload printers=no\nIn Clude = /etc/samba/user_smb.conf\n"
           "include=/none\n"},
      {"no section", "workgroup=A\n\n[photos]\npath=/p\n",
       "[global]\nworkgroup=HOME GROUP\nserver string=Files of the house\n" + rest +
           "\n[photos]\npath=/p\n"},
      {"shares before the section", "[photos]\npath=/p\n[global]\nworkgroup=A\nlog level=1\n",
       "[global]\n" + first + rest + "[photos]\npath=/p\n[global]\nlog level=1\n"},
      {"a share's header behind blanks", "[global]\nlog level=1\n  [photos]\npath=/p\n",
       "[global]\nlog level=1\n" + first + rest + others + "  [photos]\npath=/p\n"},
      {"lines joined by a backslash",
       "[global]\nserver string=a \\\n workgroup=b\r\nvfs object=c\\ \n\nnetbios name=d\\\r\n"
       "comment=e\nwork\\\ngroup=f\n#\\\nprinter=g\n[pho\\\ntos]\npath=\\\n[global]\n",
       "[global]\nserver string=Files of the house\r\nvfs object=c\nnetbios name=d\\\r\n"
       "comment=e\nworkgroup=HOME GROUP\n#\\\nprinter name=Laser\ndos charset=CP932\n"
       "comment=In the hall\nwins server=192.168.1.250\n[pho\\\ntos]\npath=\\\n[global]\n"},
      {"a last line that joins", "[global]\nlog level=1\\\n",
       "[global]\nlog level=1\\\n\n" + first + rest},
      {"a last line without an end", "[global]\nnetbios name=A",
       "[global]\nnetbios name=A\n" + first + rest},
  };
  write("/etc/samba/user_smb.conf", "[FLASH_1_1]\npath=/f\n");
  for (const auto& [what, before, after] : files) {
    SCOPED_TRACE(what);
    write(kConf, before);
    EXPECT_EQ(SMBSetSamba(&params_), 0);
    EXPECT_EQ(read(kConf), after);
    EXPECT_EQ(PRO_SetStr("global", "vfs object", "recycle", kConf), 0);
    EXPECT_EQ(PRO_SetStr("global", "username map", "/etc/samba/smbusers", kConf), 0);
    EXPECT_EQ(PRO_SetStr("global", "load printers", "no", kConf), 0);
    EXPECT_EQ(in_force(), kInForce);
  }
}

TEST_F(SambaTest, StartsTheDaemonsAnewWithTheCallersSignalActionKept) {
  (void)signal(SIGCHLD, SIG_IGN); /* the commands' statuses are told all the same */
  EXPECT_EQ(SMBSetSamba(&params_), 0);
  EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN);
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
