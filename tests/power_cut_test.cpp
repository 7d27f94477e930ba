// Changes that die at each of their steps, and what fileshare recover makes of that.
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <filesystem>
#include <sstream>

#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/fileshare_run.h"
#include "tests/share_records.h"

namespace fs = std::filesystem;

namespace {

// The library's own steps that no outside program does: the process dies before the nth.
int steps_taken = 0;
int last_step = 0;  // 0: it does not die

void take_step() {
  if (++steps_taken == last_step) (void)raise(SIGKILL);
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
int unlink(const char* path) noexcept {
  take_step();
  return static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

int rename(const char* from, const char* to) noexcept {
  take_step();
  return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if ((flags & O_EXCL) != 0) take_step();
  return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
}
#pragma GCC visibility pop

namespace {

const std::string kConf = "/harddisk/volume_1/conf/";
const Strings kAccounts = {kConf + "passwd", kConf + "group", kConf + "usrgrp.info",
                           kConf + "smbpasswd", kConf + ".htpasswd"};
const Strings kCopied = joined({kAccounts, {kOnVolume, kSmb}});
constexpr char kOld[] = "of a change long ago\n";

unsigned add_user() {
  UserInfo dave{"dave", "Dave Miller", "word-77", 250, 0};
  return AddUser(&dave);
}

// A new name, and as admin's a new web password.
unsigned update_user(const char* name, const char* new_name) {
  UserInfo user{"", "Changed", "word-78", 125, 0};
  (void)std::snprintf(user.name, sizeof user.name, "%s", new_name);
  return UpdateUser(name, &user);
}

unsigned add_share() {
  ShareInfo share = share_record("Photos", "Holidays", "/Photos", 1);
  return AddShare(&share);
}

unsigned update_share(const char* new_name, const char* comment, const char* path) {
  ShareInfo share = share_record(new_name, comment, path, 1);
  return UpdateShare("Music", &share);
}

enum class Kind { kOneDisk, kTwoDisks, kShares };

struct Change {
  const char* name;
  unsigned (*run)();
  Kind kind;
};

const Change kChanges[] = {
    {"AddUser", add_user, Kind::kOneDisk},
    {"UpdateUser", [] { return update_user("bob", "rob"); }, Kind::kOneDisk},
    {"UpdateUserAdmin", [] { return update_user("admin", "admin"); }, Kind::kOneDisk},
    {"DelUser", [] { return DelUser("alice"); }, Kind::kTwoDisks},
    {"AddShare", add_share, Kind::kShares},
    {"UpdateShare", [] { return update_share("Music", "New", "/Sound"); }, Kind::kShares},
    {"DelShare", [] { return DelShare("Music"); }, Kind::kShares},
    {"AddUsersToGroup",
     [] {
       const char* const users[] = {"bob"};
       return AddUsersToGroup("family", users, 1);
     },
     Kind::kOneDisk},
    {"UpdateShareName", [] { return update_share("Sound", "Songs of the family", "/Music"); },
     Kind::kShares},
};

// A renamed share may have moved to the end.
std::string sorted_lines(const std::string& text) {
  std::istringstream in(text);
  Strings lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  std::string all;
  for (const std::string& line : lines) all += line + '\n';
  return all;
}

class PowerCutTest : public FileshareRun, public testing::WithParamInterface<Change> {
 protected:
  static Strings state() {
    Strings all;
    if (GetParam().kind != Kind::kShares) {
      for (const std::string& path : kAccounts) all.push_back(read(path));
      return all;
    }
    for (const char* path : kShareFiles) all.push_back(sorted_lines(read(path)));
    for (const char* folder : {"Photos", "Sound"}) {
      all.push_back(exists(std::string("/harddisk/volume_1/data/") + folder) ? folder : "");
    }
    return all;
  }

  // In a process of its own; whether it got to the end.
  static bool run_to_its_end(int dying_step) {
    const pid_t child = fork();
    if (child == 0) {
      (void)setpgid(0, 0);
      steps_taken = 0;
      last_step = dying_step;
      const unsigned code = GetParam().run();
      last_step = 0;
      _exit(code == FSH_OK ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    return !WIFSIGNALED(status);
  }

  // A device whose copies are of an hour ago, when the files were others.
  void start() {
    SetUp();
    if (GetParam().kind == Kind::kTwoDisks) mount_volume(2);
    for (const std::string& path : kCopied) {
      write(path + ".ttt", kOld);
      fs::last_write_time(path + ".ttt", fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
  }

  // The change, without power from the nth command on.
  void die_at(int nth, bool half) {
    start();
    cut_power(nth, half);
    EXPECT_FALSE(run_to_its_end(0));
  }

  static void expect_whole_copies(const std::string& cut) {
    for (const std::string& path : kCopied) {
      const std::string copy = read(path + ".ttt");
      if (path + ".ttt" == cut || copy == kOld) continue;
      EXPECT_EQ(copy, before_.at(path).content) << path;
    }
  }

  // As before the change or as after it.
  static void expect_recovered() {
    const Outcome outcome = fileshare({"recover"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    for (const auto& [path, state] : snapshot()) EXPECT_FALSE(path.ends_with(".lck")) << path;
    for (const char* name : {"passwd", "group", "usrgrp.info", "smbpasswd"}) {
      const std::string mirrored = std::string("/harddisk/volume_2/conf/") + name;
      if (exists(mirrored)) {
        EXPECT_EQ(read(mirrored), read(kConf + name));
      }
    }
    EXPECT_TRUE(state() == undone_ || state() == done_)
        << outcome.out << testing::PrintToString(state());
  }

  static void expect_open() {
    if (state() == done_) return;
    EXPECT_TRUE(run_to_its_end(0));
    EXPECT_EQ(state(), done_);
  }

  static inline Snapshot before_;
  static inline Strings undone_;
  static inline Strings done_;
};

TEST_P(PowerCutTest, RecoversFromEachStep) {
  start();
  before_ = snapshot();
  undone_ = state();
  ASSERT_TRUE(run_to_its_end(0));
  done_ = state();
  Strings commands = DeviceTest::commands();
  std::erase_if(commands, [](const std::string& line) { return !line.starts_with("/"); });
  int last_copy = 0;
  for (int nth = 1; nth <= static_cast<int>(commands.size()); ++nth) {
    const std::string& command = commands[static_cast<std::size_t>(nth - 1)];
    // The second of two copies leaves nothing that the first or the next command does not.
    if (nth > 1 && command == commands[static_cast<std::size_t>(nth - 2)]) continue;
    const std::string target = command.substr(command.rfind('[') + 1);
    const bool copies = command.starts_with("/bin/cp");
    if (copies) last_copy = nth;
    for (const bool half : copies ? std::vector{false, true} : std::vector{false}) {
      SCOPED_TRACE(std::to_string(nth) + (half ? " half " : " ") + command);
      die_at(nth, half);
      const std::string cut = half ? target.substr(0, target.size() - 1) : "";
      expect_whole_copies(cut);
      const std::string half_copy = cut.ends_with(".ttt") ? read(cut) : "";
      expect_recovered();
      EXPECT_FALSE(cut.ends_with(".ttt") && exists(cut) && read(cut) == half_copy) << cut;
      expect_open();
      if (HasFailure()) return;
    }
  }
  for (int step = 1;; ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    start();
    if (run_to_its_end(step)) break;
    expect_whole_copies("");
    expect_recovered();
    expect_open();
    if (HasFailure()) return;
  }
  // The recovery dies too: of the accounts, once for all changes.
  if (GetParam().kind == Kind::kOneDisk) return;
  constexpr int kKilled = 128 + SIGKILL;
  for (int nth = 1, status = kKilled; status == kKilled; ++nth) {
    SCOPED_TRACE("recovery " + std::to_string(nth));
    die_at(last_copy, true);
    cut_power(nth, true);
    status = run({"setsid", "fileshare", "recover"}).status;
    fs::remove("/run/stand_in/any");
    expect_recovered();
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Changes, PowerCutTest, testing::ValuesIn(kChanges),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
