// Management pages that change users, groups and shares at the same moment.
#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "filesharing/users.h"
#include "tests/fileshare_run.h"
#include "tests/share_records.h"

namespace {

constexpr int kPages = 5;
constexpr int kTurns = 5;
constexpr int kTries = 25;

struct Change {
  unsigned (*run)(const std::string& name);
  std::set<unsigned> busy;
};

UserInfo record(const std::string& name, const char* description, unsigned quota) {
  UserInfo user{};
  (void)std::snprintf(user.name, sizeof user.name, "%s", name.c_str());
  (void)std::snprintf(user.description, sizeof user.description, "%s", description);
  (void)std::snprintf(user.password, sizeof user.password, "%s", "word-77");
  user.quota = quota;
  return user;
}

// In this order for each name. UpdateUser looks for the user before it takes the locks, perhaps in
// the moment in which another page copies the accounts: it then finds none.
const Change kChanges[] = {
    {[](const std::string& name) {
       const UserInfo user = record(name, "new", 1);
       return AddUser(&user);
     },
     {FSH_USER_NOT_ADDED}},
    {[](const std::string& name) {
       const char* const users[] = {name.c_str()};
       return AddUsersToGroup("staff", users, 1);
     },
     {FSH_ADD_MEMBER_BUSY}},
    {[](const std::string& name) {
       const UserInfo user = record(name, "changed", 2);
       return UpdateUser(name.c_str(), &user);
     },
     {FSH_UPDATE_USER_BUSY, FSH_USER_NOT_UPDATED}},
    {[](const std::string& name) {
       ShareInfo share = share_record(name.c_str(), "shared", ("/" + name).c_str(), 1);
       return AddShare(&share);
     },
     {FSH_SHARE_NOT_ADDED}},
};
constexpr int kChangesOfAPage = kTurns * static_cast<int>(std::size(kChanges));

// What the pages tell the test.
struct Progress {
  int done[kPages];
  unsigned odd_code;
};

std::string name_of(int page, int turn) {
  return "page" + std::to_string(page) + "turn" + std::to_string(turn);
}

class ManyAtOnceTest : public FileshareRun {
 protected:
  // In a process of its own, as pages are.
  static unsigned code_of(const Change& change, const std::string& name) {
    const pid_t child = fork();
    if (child == 0) _exit(static_cast<int>(change.run(name)));
    int status = 0;
    (void)waitpid(child, &status, 0);
    return static_cast<unsigned>(WEXITSTATUS(status));
  }

  // Goes on with the page's changes until one is refused too often.
  static void run_page(int page, Progress& progress) {
    for (int& done = progress.done[page]; done < kChangesOfAPage; ++done) {
      const Change& change = kChanges[static_cast<std::size_t>(done) % std::size(kChanges)];
      const std::string name = name_of(page, done / static_cast<int>(std::size(kChanges)));
      unsigned code = FSH_FAILED;
      for (int tries = 0; tries < kTries && code != FSH_OK; ++tries) {
        code = code_of(change, name);
        if (code != FSH_OK && change.busy.count(code) == 0) progress.odd_code = code;
        (void)sched_yield();
      }
      if (code != FSH_OK) return;
    }
  }

  static void run_pages(Progress& progress) {
    for (int page = 0; page < kPages; ++page) {
      if (fork() != 0) continue;
      run_page(page, progress);
      _exit(0);
    }
    wait_for_background();
  }

  static bool all_done(const Progress& progress) {
    return std::all_of(std::begin(progress.done), std::end(progress.done),
                       [](int done) { return done == kChangesOfAPage; });
  }

  static long lines_with(const std::string& path, const std::string& text) {
    std::istringstream in(read(path));
    long count = 0;
    for (std::string line; std::getline(in, line);) {
      if (line.find(text) != std::string::npos) ++count;
    }
    return count;
  }
};

// Kept behaviour makes rounds necessary: a page that is refused leaves the locks that it got before
// the busy one, and they close the files for everybody. A recovery between the rounds opens them,
// and must not take anything back, since nobody died.
TEST_F(ManyAtOnceTest, AHundredChangesLoseNothing) {
  auto* progress = static_cast<Progress*>(
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(progress, MAP_FAILED);
  const std::size_t users_before = shown({"user", "list"}).size();
  const std::size_t shares_before = shown({"share", "list"}).size();
  constexpr int kMostRounds = 200;
  for (int round = 0; round < kMostRounds && !all_done(*progress); ++round) {
    run_pages(*progress);
    const Outcome outcome = fileshare({"recover"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    ASSERT_EQ(outcome.out.find("restored"), std::string::npos) << outcome.out;
    ASSERT_EQ(outcome.out.find("completed"), std::string::npos) << outcome.out;
  }
  ASSERT_TRUE(all_done(*progress)) << "the changes come to a standstill";
  EXPECT_EQ(progress->odd_code, 0u);
  (void)munmap(progress, sizeof *progress);

  const Json users = shown({"user", "list"});
  std::set<int> uids;
  for (const Json& user : users) uids.insert(user["uid"].get<int>());
  EXPECT_EQ(uids.size(), users.size()) << "two users of one id";
  EXPECT_EQ(users.size(), users_before + kPages * kTurns);
  EXPECT_EQ(shown({"share", "list"}).size(), shares_before + kPages * kTurns);
  EXPECT_EQ(lines_with("/etc/passwd", ":501:changed:"), kPages * kTurns);
  for (int page = 0; page < kPages; ++page) {
    for (int turn = 0; turn < kTurns; ++turn) {
      const std::string name = name_of(page, turn);
      SCOPED_TRACE(name);
      EXPECT_EQ(lines_with("/etc/passwd", name + ":"), 1);
      EXPECT_EQ(lines_with("/etc/group", name), 2) << "everyone and staff";
      EXPECT_EQ(lines_with("/etc/usrgrp.info", name + ":2"), 2) << "everyone and staff";
      EXPECT_EQ(lines_with(kRegistry, name + "=0:1:shared:/" + name + "/:administrators:7"), 1);
      EXPECT_EQ(lines_with(kOnVolume, name + "=shared:/" + name + "/:administrators:7"), 1);
      EXPECT_EQ(lines_with(kSmb, "[" + name + "]"), 1);
      EXPECT_EQ(lines_with(kAfp, "\"[" + name + "]\""), 1);
    }
  }
  EXPECT_TRUE(std::filesystem::is_empty("/harddisk/volume_1/conf/tmp"));
}

// A process that has loaded the library waits beside the program.
TEST_F(ManyAtOnceTest, RecoversBesideAnotherUserOfTheLibraryOnlyByForce) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    close(ends[1]);
    char end = 0;
    _exit(static_cast<int>(::read(ends[0], &end, 1)));
  }
  write("/tmp/pass.lck", "");
  const std::string self =
      "can not recover: process " + std::to_string(child) + " (many_at_once_te)";
  expect_refused({{{"recover"}, 1, self + " uses the library and may be at work; try again when"}});
  expect({"recover", "--force"}, "cleared lock \"pass\"\n");
  close(ends[1]);
}

}  // namespace
