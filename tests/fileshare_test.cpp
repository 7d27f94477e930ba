// The program fileshare, run as a user would: what it prints, its exit status, what it leaves.
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "tests/device_test.h"

namespace {

using Json = nlohmann::json;

class FileshareTest : public DeviceTest {
 protected:
  static Outcome fileshare(Strings arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), "fileshare");
    return run(arguments, input);
  }

  static void replace(const std::string& path, const std::string& from, const std::string& to) {
    std::string text = read(path);
    const std::size_t found = text.find(from);
    ASSERT_NE(found, std::string::npos) << from;
    write(path, text.replace(found, from.size(), to));
  }

  static void expect(const Outcome& outcome, int status, const std::string& out,
                     const std::string& error) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.error, error);
  }
};

// A program at a terminal of its own.
class Terminal {
 public:
  explicit Terminal(Strings arguments, unsigned short columns = 80) {
    const winsize size{24, columns, 0, 0};
    child_ = forkpty(&master_, nullptr, nullptr, &size);
    if (child_ != 0) return;
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    (void)execvp(words[0], words.data());
    _exit(127);
  }

  // Reads on until the text appears; gives what was shown since the last call.
  std::string until(const std::string& text) {
    std::string shown;
    char next = 0;
    while (shown.find(text) == std::string::npos && read(master_, &next, 1) == 1) shown += next;
    return shown;
  }

  void type(const std::string& text) {
    EXPECT_EQ(write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  bool echoes() const {
    termios mode{};
    EXPECT_EQ(tcgetattr(master_, &mode), 0);
    return (mode.c_lflag & ECHO) != 0;
  }

  // The status as waitpid gives it.
  int finish() {
    int status = 0;
    EXPECT_EQ(waitpid(child_, &status, 0), child_);
    close(master_);
    return status;
  }

 private:
  int master_ = -1;
  pid_t child_ = -1;
};

TEST_F(FileshareTest, ListsUsersInColumns) {
  expect(fileshare({"user", "list"}), 0,
         "NAME    UID  QUOTA  DESCRIPTION    GROUPS\n"
         "admin   500      0  Administrator  everyone, administrators\n"
         "guest   501      0  Guest          everyone\n"
         "alice  2000    500  Alice Carter   everyone, staff, family\n"
         "bob    2001   1000  Bob Fisher     everyone, staff\n"
         "carol  2002      0                 everyone, family\n",
         "");
}

TEST_F(FileshareTest, TableGivesWayToItsWidthAndHidesWhatWouldDriveATerminal) {
  replace("/etc/passwd", "Alice Carter", "\033[2J\xE9 a description that will not fit a column");
  replace("/etc/passwd", "Bob Fisher", "日本語");
  expect(fileshare({"user", "list"}), 0,
         "NAME    UID  QUOTA  DESCRIPTION                         GROUPS\n"
         "admin   500      0  Administrator                       everyone, administrators\n"
         "guest   501      0  Guest                               everyone\n"
         "alice  2000    500  ?[2J? a description that will not…  everyone, staff, family\n"
         "bob    2001   1000  日本語                              everyone, staff\n"
         "carol  2002      0                                      everyone, family\n",
         "");
}

TEST_F(FileshareTest, JsonHoldsEveryFieldAndSurvivesBytesThatAreNotUtf8) {
  replace("/etc/passwd", "Bob Fisher",
          "B\xF6"
          "b");
  const Json users = Json::parse(fileshare({"user", "list", "--json"}).out);
  ASSERT_EQ(users.size(), 5u);
  EXPECT_EQ(users[2], Json::parse(R"({"name": "alice", "uid": 2000, "quota": 500,
      "description": "Alice Carter", "groups": ["everyone", "staff", "family"]})"));
  EXPECT_EQ(users[3]["description"], "B\uFFFDb");
}

TEST_F(FileshareTest, ShowsAUserAndTellsWhenTheQuotaListLacksIt) {
  replace("/etc/usrgrp.info", ",carol:0\nadministrators", "\nadministrators");
  expect(fileshare({"user", "show", "carol"}), 0,
         "name:         carol\n"
         "uid:          2002\n"
         "quota:        0\n"
         "description:\n"
         "groups:       family\n"
         "registered:   no\n",
         "");
  EXPECT_EQ(Json::parse(fileshare({"user", "show", "--json", "bob"}).out),
            Json::parse(R"({"name": "bob", "uid": 2001, "quota": 1000, "registered": true,
                            "description": "Bob Fisher", "groups": ["everyone", "staff"]})"));
}

TEST_F(FileshareTest, ErrorLineTellsOperationReasonAndCode) {
  expect(fileshare({"user", "show", "dave"}), 1, "",
         "fileshare: can not show user \"dave\": there is no user of this name (code 33)\n");
  // A name that is a verb elsewhere is still a name.
  expect(fileshare({"user", "show", "list"}), 1, "",
         "fileshare: can not show user \"list\": there is no user of this name (code 33)\n");
  replace("/etc/usrgrp.info", "alice:500", "alice");
  expect(fileshare({"user", "show", "bob"}), 1, "",
         "fileshare: can not show user \"bob\": the list of quotas is malformed (code 33)\n");
  ASSERT_EQ(unlink("/etc/usrgrp.info"), 0);
  expect(fileshare({"user", "list"}), 1, "",
         "fileshare: can not list the users: a file can not be opened (code 21)\n");
}

TEST_F(FileshareTest, RefusesNamesThatWouldBreakFilesOrCommands) {
  const std::string at_most = "is 20 bytes long at most, this is 21";
  const std::pair<std::string, std::string> refused[] = {
      {"", "can not be empty"},
      {"a:b", "can not contain \":\""},
      {"a,b", "can not contain \",\""},
      {"a=b", "can not contain \"=\""},
      {"../b", "can not begin with \".\""},
      {"a/b", "can not contain \"/\""},
      {"[a", "can not contain \"[\""},
      {"a]", "can not contain \"]\""},
      {"a\"b", "can not contain '\"'"},
      {"a'b", "can not contain \"'\""},
      {"$(id)", "can not contain \"$\""},
      {"a\\b", "can not contain \"\\\""},
      {"a`b", "can not contain \"`\""},
      {"@a", "can not begin with \"@\""},
      {" a", "can not begin or end with a blank"},
      {"a ", "can not begin or end with a blank"},
      {"a\nb", "can not contain control characters"},
      {"a\x7F", "can not contain control characters"},
      {"a\xC2\x85", "can not contain control characters"},
      {"a\xE9", "has to be valid UTF-8"},
      {"a\xC0\xAF", "has to be valid UTF-8"},
      {"a\xED\xA0\x80", "has to be valid UTF-8"},
      {std::string(21, 'a'), at_most},
      {"ééééééééééa", at_most},
  };
  for (const auto& [name, why] : refused) {
    expect(fileshare({"user", "show", "--", name}), 2, "",
           "fileshare: NAME: a user name " + why + "\nTry \"fileshare user show --help\".\n");
  }
  expect(fileshare({"user", "show", "--", "-a"}), 2, "",
         "fileshare: NAME: a user name can not begin with \"-\"\n"
         "Try \"fileshare user show --help\".\n");
  EXPECT_EQ(fileshare({"user", "show", "éééééééééé"}).status, 1);
}

TEST_F(FileshareTest, UsageErrorsNameWhatIsWrong) {
  struct Case {
    Strings arguments;
    std::string error;
  };
  const Case cases[] = {
      {{}, "a verb is missing\nTry \"fileshare --help\".\n"},
      {{"user"}, "a verb is missing\nTry \"fileshare user --help\".\n"},
      {{"user", "ad"}, "\"ad\" is not known here\nTry \"fileshare user --help\".\n"},
      {{"--\033"}, "\"--?\" is not known here\nTry \"fileshare --help\".\n"},
      {{"user", "show"}, "NAME is required\nTry \"fileshare user show --help\".\n"},
      {{"user", "show", "a", "b"},
       "\"b\" is not known here\nTry \"fileshare user show --help\".\n"},
      {{"lock", "clear", "pas"},
       "FILE: pas not in {pass,grp,user,share,smb,smbpass,webpass,samba,album}\n"
       "Try \"fileshare lock clear --help\".\n"},
  };
  for (const Case& usage : cases) {
    expect(fileshare(usage.arguments), 2, "", "fileshare: " + usage.error);
  }
}

TEST_F(FileshareTest, LostOutputIsAFailure) {
  expect(run({"sh", "-c", "fileshare user list > /dev/full"}), 1, "",
         "fileshare: the output could not be written\n");
}

TEST_F(FileshareTest, PasswordIsOneLineOfStandardInput) {
  const std::string wrong = "fileshare: the password of user \"bob\" is not correct\n";
  struct Case {
    std::string input;
    int status;
    std::string out;
    std::string error;
  };
  const Case cases[] = {
      {"correcthorsebattery\nrest\n", 0, "correct\n", ""},
      {"correcthorsebattery", 0, "correct\n", ""},
      {"correcthorse", 1, "", wrong},
      {" correcthorsebattery\n", 1, "", wrong},
      {"\n", 1, "", wrong},
      {"", 2, "", "fileshare: no password was given\n"},
      {std::string("correcthorsebattery\0x\n", 22), 2, "",
       "fileshare: a password can not contain control characters\n"},
      {std::string(255, 'x') + "\n", 1, "", wrong},
      {std::string(256, 'x') + "\n", 2, "", "fileshare: the password is too long\n"},
  };
  for (const Case& attempt : cases) {
    expect(fileshare({"user", "check-password", "bob"}, attempt.input), attempt.status, attempt.out,
           attempt.error);
  }
  expect(fileshare({"user", "check-password", "bob", "correcthorsebattery"}), 2, "",
         "fileshare: \"correcthorsebattery\" is not known here\n"
         "Try \"fileshare user check-password --help\".\n");
}

TEST_F(FileshareTest, PasswordTypedAtATerminalIsNotEchoed) {
  Terminal terminal({"fileshare", "user", "check-password", "bob"});
  EXPECT_EQ(terminal.until("\": "), "Password of user \"bob\": ");
  while (terminal.echoes()) (void)sched_yield();
  terminal.type("correcthorsebattery\n");
  EXPECT_EQ(terminal.until("correct\r\n"), "\r\ncorrect\r\n");
  EXPECT_TRUE(terminal.echoes());
  EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(FileshareTest, InterruptedPasswordTurnsTheEchoOnAgain) {
  Terminal terminal({"fileshare", "user", "check-password", "bob"});
  (void)terminal.until("\": ");
  while (terminal.echoes()) (void)sched_yield();
  terminal.type("correct\003");
  while (!terminal.echoes()) (void)sched_yield();
  const int status = terminal.finish();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
}

TEST_F(FileshareTest, TableFitsTheTerminal) {
  replace("/etc/passwd", "Bob Fisher", "B日本語の名前");  // a wide one does not fit the last column
  Terminal terminal({"fileshare", "user", "list"}, 40);
  EXPECT_EQ(terminal.until("carol  2002      0             everyone…\r\n"),
            "NAME    UID  QUOTA  DESCRIPT…  GROUPS\r\n"
            "admin   500      0  Administ…  everyone…\r\n"
            "guest   501      0  Guest      everyone\r\n"
            "alice  2000    500  Alice Ca…  everyone…\r\n"
            "bob    2001   1000  B日本語…   everyone…\r\n"
            "carol  2002      0             everyone…\r\n");
  EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(FileshareTest, ListsAndClearsLocks) {
  for (const char* lock : {"smb", "pass", "album", "other"}) {
    write("/tmp/" + std::string(lock) + ".lck", "");
  }
  Json listed = Json::parse(fileshare({"lock", "list", "--json"}).out);
  for (Json& lock : listed) EXPECT_EQ(lock["since"].get<std::string>().size(), 19u);
  EXPECT_EQ(listed.size(), 3u);
  EXPECT_EQ(listed[0]["lock"], "pass");
  EXPECT_EQ(listed[0]["file"], "/tmp/pass.lck");
  EXPECT_EQ(listed[1]["lock"], "smb");
  EXPECT_EQ(listed[2]["lock"], "album");

  const Snapshot before = snapshot();
  expect(fileshare({"lock", "clear", "pass", "grp"}), 0, "", "");
  EXPECT_EQ(changes(before), Strings({"-/tmp/pass.lck"}));
  expect(fileshare({"lock", "clear"}), 0, "", "");
  EXPECT_EQ(changes(before), Strings({"-/tmp/album.lck", "-/tmp/pass.lck", "-/tmp/smb.lck"}));
}

TEST_F(FileshareTest, LockThatCanNotBeClearedIsAFailure) {
  ASSERT_EQ(mkdir("/tmp/grp.lck", 0755), 0);
  write("/tmp/user.lck", "");
  expect(fileshare({"lock", "clear"}), 1, "",
         "fileshare: can not clear lock \"grp\": /tmp/grp.lck stays\n");
  EXPECT_FALSE(exists("/tmp/user.lck"));
}

constexpr const char* kConf = "/harddisk/volume_1/conf/";

TEST_F(FileshareTest, BacksUpAndRestoresTheChosenFiles) {
  const Snapshot before = snapshot();
  expect(fileshare({"backup", "share", "pass"}), 0, "", "");
  EXPECT_EQ(changes(before), Strings({std::string("+") + kConf + "passwd.ttt",
                                      std::string("+") + kConf + "share.info.ttt"}));
  const std::string accounts = read("/etc/passwd");
  write("/etc/passwd", "");
  write("/etc/group", "");
  expect(fileshare({"restore", "pass"}), 0, "", "");
  EXPECT_EQ(read("/etc/passwd"), accounts);
  EXPECT_EQ(read("/etc/group"), "");
  EXPECT_FALSE(exists("/tmp/pass.lck"));
}

TEST_F(FileshareTest, BackupOfAllGoesOnBehindAFileThatFails) {
  ASSERT_EQ(unlink((std::string(kConf) + "smbpasswd").c_str()), 0);
  expect(fileshare({"backup"}), 1, "",
         "fileshare: can not back up file \"smbpass\": the copy command failed (code 256)\n");
  for (const char* file :
       {"passwd", "group", "usrgrp.info", "share.info", "smb.conf", ".htpasswd"}) {
    EXPECT_EQ(read(kConf + std::string(file) + ".ttt"), read(kConf + std::string(file)));
  }
}

TEST_F(FileshareTest, BusyBackupTakesNothingAndReleasesItsOwnLocks) {
  write("/tmp/user.lck", "");
  const Snapshot before = snapshot();
  expect(fileshare({"restore"}), 1, "",
         "fileshare: can not restore file \"user\": its lock is taken (code 8)\n");
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(commands(), Strings());
}

TEST_F(FileshareTest, BackupWithoutAConfigurationVolume) {
  ASSERT_EQ(unlink((std::string(kConf) + ".qv27").c_str()), 0);
  expect(fileshare({"backup", "grp"}), 1, "",
         "fileshare: can not back up file \"grp\": no volume carries the account files "
         "(code -1)\n");
}

}  // namespace
