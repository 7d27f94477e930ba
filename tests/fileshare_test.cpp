// What all verbs of fileshare share: tables, JSON, names, passwords, the terminal; locks and
// backups.
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/fileshare_run.h"

namespace {

class FileshareTest : public FileshareRun {
 protected:
  static void replace(const std::string& path, const std::string& from, const std::string& to) {
    std::string text = read(path);
    const std::size_t found = text.find(from);
    ASSERT_NE(found, std::string::npos) << from;
    write(path, text.replace(found, from.size(), to));
  }
};

// The program at a terminal of its own.
class Terminal {
 public:
  explicit Terminal(std::vector<const char*> arguments, unsigned short columns = 80) {
    const winsize size{24, columns, 0, 0};
    arguments.push_back(nullptr);
    child_ = forkpty(&master_, nullptr, nullptr, &size);
    if (child_ != 0) return;
    (void)execvp("fileshare", const_cast<char**>(arguments.data()));
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

  void wait_for_echo(bool on) {
    termios mode{};
    while (tcgetattr(master_, &mode) == 0 && ((mode.c_lflag & ECHO) != 0) != on) sched_yield();
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

TEST_F(FileshareTest, TableGivesWayToItsWidthAndHidesWhatWouldDriveATerminal) {
  replace("/etc/passwd", "Alice Carter", "\033[2J\xE9 a description that will not fit a column");
  replace("/etc/passwd", "Bob Fisher", "日本語");
  expect({"user", "list"},
         "NAME    UID  QUOTA  DESCRIPTION                         GROUPS\n"
         "admin   500      0  Administrator                       everyone, administrators\n"
         "guest   501      0  Guest                               everyone\n"
         "alice  2000    500  ?[2J? a description that will not…  everyone, staff, family\n"
         "bob    2001   1000  日本語                              everyone, staff\n"
         "carol  2002      0                                      everyone, family\n");
}

TEST_F(FileshareTest, TableFitsTheTerminal) {
  replace("/etc/passwd", "Bob Fisher", "B日本語の名前");  // a wide one does not fit the last column
  Terminal terminal({"fileshare", "user", "list"}, 40);
  const std::string last = "carol  2002      0             everyone…\r\n";
  const std::string table = terminal.until(last);
  EXPECT_EQ(table.substr(table.find("alice")),
            "alice  2000    500  Alice Ca…  everyone…\r\n"
            "bob    2001   1000  B日本語…   everyone…\r\n" +
                last);
  EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(FileshareTest, JsonHoldsEveryFieldAndSurvivesBytesThatAreNotUtf8) {
  replace("/etc/passwd", "Bob Fisher", "\xF6");
  EXPECT_EQ(shown({"user", "list"})[3], Json::parse(R"({"name": "bob", "uid": 2001, "quota": 1000,
      "description": "\uFFFD", "groups": ["everyone", "staff"]})"));
  replace("/etc/usrgrp.info", ",carol:0\nadministrators", "\nadministrators");
  EXPECT_EQ(shown({"user", "show", "carol"})["registered"], false);
}

TEST_F(FileshareTest, ErrorLineTellsOperationReasonAndCode) {
  expect_refused({{{"user", "show", "list"},
                   1,
                   "can not show user \"list\": there is no user of this name (code 33)\n"}});
  replace("/etc/usrgrp.info", "alice:500", "alice");
  expect_refused({{{"user", "show", "bob"},
                   1,
                   "can not show user \"bob\": the list of quotas is malformed (code 33)\n"}});
  EXPECT_EQ(run({"sh", "-c", "fileshare lock list > /dev/full"}).error,
            "fileshare: the output could not be written\n");
}

TEST_F(FileshareTest, RefusesNamesThatWouldBreakFilesOrCommands) {
  const std::pair<std::string, std::string> refused[] = {
      {"", "can not be empty"},
      {"../b", "can not begin with \".\""},
      {"-a", "can not begin with \"-\""},
      {"a ", "can not begin or end with a blank"},
      {"a\xC2\x85", "can not contain control characters"},
      {"a\xC0\xAF", "has to be valid UTF-8"},
      {"ééééééééééa", "is 20 bytes long at most, this is 21"},
  };
  for (const auto& [name, why] : refused) {
    expect_refused({{{"user", "show", "--", name},
                     2,
                     "NAME: a user name " + why + "\nTry \"fileshare user show --help\".\n"}});
  }
  for (const char sign : std::string(":,=/[]\"'$\\`")) {
    expect_refused(
        {{{"user", "show", std::string("a") + sign}, 2, "NAME: a user name can not con"}});
  }
  EXPECT_EQ(fileshare({"user", "show", "éééééééééé"}).status, 1);
}

TEST_F(FileshareTest, UsageErrorsNameWhatIsWrong) {
  expect_refused({
      {{}, 2, "a verb is missing\nTry \"fileshare --help\".\n"},
      {{"user", "ad"}, 2, "\"ad\" is not known here\nTry \"fileshare user --help\".\n"},
      {{"user", "show"}, 2, "NAME is required\nTry \"fileshare user show --help\".\n"},
      {{"lock", "clear", "pas"}, 2, "FILE: pas not in {pass,grp,user,share,smb,"},
  });
}

TEST_F(FileshareTest, PasswordIsOneLineOfStandardInput) {
  const std::string wrong = "the password of user \"bob\" is not correct\n";
  const std::tuple<std::string, int, std::string> inputs[] = {
      {"correcthorsebattery\nrest\n", 0, ""},
      {" correcthorsebattery\n", 1, wrong},
      {"", 2, "no password was given\n"},
      {std::string("correcthorsebattery\0x\n", 22), 2, "a password can not contain control charac"},
      {std::string(255, 'x') + "\n", 1, wrong},
      {std::string(256, 'x') + "\n", 2, "the password is too long\n"},
  };
  for (const auto& [input, status, error] : inputs) {
    const Outcome outcome = fileshare({"user", "check-password", "bob"}, input);
    EXPECT_EQ(outcome.status, status) << input;
    EXPECT_EQ(outcome.out, status == 0 ? "correct\n" : "");
    EXPECT_TRUE(outcome.error.starts_with(status == 0 ? "" : "fileshare: " + error)) << input;
  }
}

TEST_F(FileshareTest, PasswordTypedAtATerminalIsNotEchoedAndTheEchoComesBack) {
  for (const bool interrupted : {false, true}) {
    Terminal terminal({"fileshare", "user", "check-password", "bob"});
    EXPECT_EQ(terminal.until("\": "), "Password of user \"bob\": ");
    terminal.wait_for_echo(false);
    terminal.type(interrupted ? "correct\003" : "correcthorsebattery\n");
    if (!interrupted) {
      EXPECT_EQ(terminal.until("correct\r\n"), "\r\ncorrect\r\n");
    }
    terminal.wait_for_echo(true);
    const int status = terminal.finish();
    EXPECT_EQ(WIFSIGNALED(status) ? WTERMSIG(status) : 0, interrupted ? SIGINT : 0);
  }
}

TEST_F(FileshareTest, ListsAndClearsLocks) {
  for (const char* lock : {"smb", "pass", "other"}) write(std::string("/tmp/") + lock + ".lck", "");
  const Json listed = shown({"lock", "list"});
  ASSERT_EQ(listed.size(), 2u);
  EXPECT_EQ(listed[0]["file"], "/tmp/pass.lck");
  EXPECT_EQ(listed[0]["since"].get<std::string>().size(), 19u);

  const Snapshot before = snapshot();
  expect({"lock", "clear", "pass", "grp"});
  EXPECT_EQ(changes(before), Strings({"-/tmp/pass.lck"}));
  ASSERT_EQ(mkdir("/tmp/grp.lck", 0755), 0);
  EXPECT_EQ(fileshare({"lock", "clear"}).error,
            "fileshare: can not clear lock \"grp\": /tmp/grp.lck stays\n");
  EXPECT_EQ(changes(before), Strings({"+/tmp/grp.lck", "-/tmp/pass.lck", "-/tmp/smb.lck"}));
}

TEST_F(FileshareTest, BacksUpAndRestoresTheChosenFilesAndGoesOnBehindAFailure) {
  const std::string conf = "/harddisk/volume_1/conf/";
  const Snapshot before = snapshot();
  expect({"backup", "share", "pass"});
  EXPECT_EQ(changes(before), Strings({"+" + conf + "passwd.ttt", "+" + conf + "share.info.ttt"}));
  const std::string accounts = read("/etc/passwd");
  write("/etc/passwd", "");
  write("/etc/group", "");
  expect({"restore", "pass"});
  EXPECT_EQ(read("/etc/passwd") + read("/etc/group"), accounts);

  ASSERT_EQ(unlink((conf + "smbpasswd").c_str()), 0);
  EXPECT_EQ(fileshare({"backup"}).error,
            "fileshare: can not back up file \"smbpass\": the copy command failed (code 256)\n");
  EXPECT_TRUE(exists(conf + ".htpasswd.ttt"));
}

TEST_F(FileshareTest, ARefusedBackupOrRestoreReleasesItsOwnLocksAlone) {
  write("/tmp/user.lck", "");
  expect_refused({{{"restore"}, 1, "can not restore file \"user\": its lock is taken (code 8)\n"}});
  EXPECT_EQ(commands(), Strings());
  ASSERT_EQ(unlink("/harddisk/volume_1/conf/.qv27"), 0);
  expect_refused(
      {{{"backup", "grp"}, 1, "can not back up file \"grp\": no volume carries the acc"}});
}

// Copies of a change that was done are older than what others did since.
TEST_F(FileshareTest, RecoversNothingFromLocksWithoutADeadChange) {
  expect({"recover"}, "no lock is taken: no change was interrupted\n");
  expect({"backup"});
  expect({"group", "add", "chess"});
  const Snapshot before = snapshot();
  for (const char* lock : {"pass", "grp", "user", "share", "album"}) {
    write(std::string("/tmp/") + lock + ".lck", "");  // as a refused change leaves them
  }
  expect({"recover"},
         "cleared lock \"pass\"\ncleared lock \"grp\"\ncleared lock \"user\"\n"
         "cleared lock \"share\"\ncleared lock \"album\"\n");
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(FileshareTest, RecoversNoSharesFromAListThatIsNotWhole) {
  const std::string registry = read("/etc/share.info");
  write("/tmp/share.lck", "");
  for (const std::string& lost :
       {std::string(), registry.substr(0, 100), std::string("no share\n")}) {
    write("/etc/share.info", lost);
    expect_refused(
        {{{"recover"}, 1, "/etc/share.info is not whole: nothing of the shares was ch"}});
  }
}

}  // namespace
