// Memory that runs out: each exported function again and again, with one allocation failing each
// time, those within the C library too.
#include <iconv.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <string>

#include "filesharing/users.h"
#include "tests/device_test.h"
#include "tests/faults/allocations.h"
#include "tests/faults/interposed.h"
#include "tests/faults/named_codes.h"
#include "tests/faults/operations.h"

namespace {

constexpr const char* kLocks[] = {"pass",    "grp",     "user",  "share", "smb",
                                  "smbpass", "webpass", "samba", "album"};

/* What one run of an operation gives. */
struct Ending {
  bool returned;
  unsigned code;
  int blocks_left;
};

class MemoryTest : public DeviceTest {
 protected:
  /* What the C library and others allocate once and for all. */
  static void warm_up() {
    (void)getpwnam("nobody");
    (void)getpwuid(0);
    (void)IsUserPassCorrect("alice", "sesame42");
    tzset();
    (void)iconv_close(iconv_open("UTF-16LE", "CP437"));
  }

  /* In a process of its own. */
  static Ending run(const Operation& operation, int nth) {
    static Ending* const result = static_cast<Ending*>(
        mmap(nullptr, sizeof(Ending), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    *result = {};
    Arguments arguments(operation.texts, operation.list);
    const pid_t child = fork();
    if (child == 0) {
      const pid_t self = getpid();
      start_interposing(Interposing::kCommands);
      start_counting_allocations(nth);
      try {
        const unsigned code = operation.call(arguments);
        const int left = blocks_left();
        if (getpid() == self) *result = {true, code, left};
      } catch (...) { /* a crash in any other program */
      }
      _exit(0);
    }
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    stop_counting_allocations();
    stop_interposing();
    wait_for_background();
    return *result;
  }

  static Strings locks() {
    Strings taken;
    for (const char* name : kLocks) {
      if (exists(std::string("/tmp/") + name + ".lck")) taken.emplace_back(name);
    }
    return taken;
  }
};

/* What is left on purpose, as the functions' headers say, and not by a run that succeeds. */
const std::map<std::string, int> kBlocksLeft{
    {"DelAllUser", 4},       // the names, after a user that could not be deleted
    {"GetAllGroup", 100},    // what had been read; FreeGrpList frees nothing
    {"GetGrpShares", 1},     // the record, when the shares can not be read
    {"GetLineFromFile", 1},  // the line so far
    {"ResetHttps", 2},       // a stream, when https is missing
};

/* Locks stay where the old name's line can not be looked for. */
const std::string kLeavesLocks = "RenameGroup";

/* What is wrong with a run; nothing when all is well. */
std::string fault_of(const Operation& operation, const Ending& run, const Ending& good) {
  const bool named = operation.counts || named_codes(operation.name).contains(run.code);
  const auto left = kBlocksLeft.find(operation.name);
  const int most_left = std::max(good.blocks_left, left == kBlocksLeft.end() ? 0 : left->second);
  if (!run.returned) return "does not return";
  if (!named) return "returns " + std::to_string(run.code);
  if (run.blocks_left > most_left) return "leaves " + std::to_string(run.blocks_left) + " blocks";
  return "";
}

TEST_F(MemoryTest, EachAllocationFailsOnceAndIsTold) {
  warm_up();
  for (const Operation& operation : operations()) {
    SetUp();
    operation.prepare();
    const Snapshot before = snapshot();
    const Ending good = run(operation, 0);
    const int allocations = allocations_counted();
    const bool changes_device = !changes(before).empty();
    const Strings locked = locks();
    restore(before);
    Strings faults;
    for (int nth = 1; nth <= allocations; ++nth) {
      const Ending bad = run(operation, nth);
      const std::string fault = fault_of(operation, bad, good);
      if (!fault.empty()) faults.push_back(std::to_string(nth) + " " + fault);
      const bool may_lock = operation.name == kLeavesLocks && bad.code == FSH_CANNOT_OPEN;
      if (locks() != locked && !may_lock) faults.push_back(std::to_string(nth) + " leaves locks");
      if (changes_device) restore(before);
    }
    EXPECT_EQ(faults, Strings()) << operation.name << ", " << allocations << " allocations";
  }
}

}  // namespace
