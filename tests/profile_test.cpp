/* Profile files: what is found, what a change leaves alone, and that a file is replaced as a whole
 * or not at all. */
#include "platform/profile/profile.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <functional>

#include "tests/device_test.h"

namespace {

namespace fs = std::filesystem;

constexpr char kPath[] = "/etc/sample.conf";

/* ---- The steps of a replacement, each of which can be made to fail or to be the last ---- */

enum class Fate { kWorks, kFails, kDiesBefore, kDiesAfter };
constexpr int kDeath = 9;

struct Plan {
  std::string step;
  Fate fate = Fate::kWorks;
};

Plan plan;
Strings steps;

int take_step(const std::string& step, const std::function<long()>& real) {
  const Fate fate = step == plan.step ? plan.fate : Fate::kWorks;
  if (fate == Fate::kDiesBefore) _exit(kDeath);
  if (fate == Fate::kFails) {
    errno = EIO;
    return -1;
  }
  const long result = real();
  if (fate == Fate::kDiesAfter) _exit(kDeath);
  steps.push_back(step);
  return static_cast<int>(result);
}

struct stat status_of(int file) {
  struct stat status = {};
  EXPECT_EQ(fstat(file, &status), 0);
  return status;
}

}  // namespace

/* The library's calls come here: the dynamic linker prefers the program's functions. */
#pragma GCC visibility push(default)
extern "C" {
int fchown(int file, uid_t user, gid_t group) {
  return take_step("own " + std::to_string(status_of(file).st_size),
                   [&] { return syscall(SYS_fchown, file, user, group); });
}
int fchmod(int file, mode_t mode) {
  return take_step("mode " + std::to_string(status_of(file).st_size),
                   [&] { return syscall(SYS_fchmod, file, mode); });
}
int fsync(int file) {
  const struct stat status = status_of(file);
  const std::string what = S_ISDIR(status.st_mode) ? "folder" : std::to_string(status.st_size);
  return take_step("sync " + what, [&] { return syscall(SYS_fsync, file); });
}
int rename(const char* from, const char* to) noexcept {
  return take_step(std::string("rename to ") + to,
                   [&] { return syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0); });
}
}
#pragma GCC visibility pop

namespace {

class ProfileTest : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    plan = {};
    steps.clear();
  }

  /* Calls with a stream over the text. */
  template <typename Call>
  auto with_stream(const std::string& text, Call call) {
    write(kPath, text);
    FILE* stream = fopen(kPath, "re");
    const auto result = call(stream);
    EXPECT_EQ(fclose(stream), 0);
    return result;
  }
};

struct Reading {
  std::string text;
  const char* section;
  const char* key;
  const char* value; /* null: not found */
  int length;
};

TEST_F(ProfileTest, FindsTheFirstKeyLineOfTheSection) {
  const std::string settings =
      "top=1\r\n\n# network\n[Network]\nname=a\n other = b \nname=c\n[ media ] ; comment\nname=d";
  const Reading readings[] = {
      {settings, "network", "name", "a", 1},
      {settings, "NETWORK", "other", "b ", 3},
      {settings, "media", "name", "d", 1},
      {settings, nullptr, "top", "1", 1},
      {settings, nullptr, "name", nullptr, -1},
      {settings, "network", "top", nullptr, -1},
      {settings, "network", "Name", nullptr, -1},
      {settings, "network", "nam", nullptr, -1},
      {settings, "network", "ame", nullptr, -1},
      {settings, "net", "name", nullptr, -1},
      {"[\xC3\x84]\nk=v\n", "\xC3\xA4", "k", "v", 1},
      {"[a]\nk=1\n[a\nk=2\n[b]\nm=3\n", "a", "m", nullptr, -1},
      {"k=1\n[x\nm=2\n", nullptr, "m", nullptr, -1},
      {"[a]\n[a]\nk=v\n", "a", "k", nullptr, -1},
      {"k=\r\n", nullptr, "k", "", 0},
      {"k= \t v=w\r\n", nullptr, "k", "v=w", 6},
      {"k\nk =\n", nullptr, "k", "", 0},
      {"k=v\r", nullptr, "k", "v", 1},
      {std::string("k\0=x\nk=a\0b\n", 11), nullptr, "k", "a", 3},
      {"", nullptr, "k", nullptr, -1},
  };
  for (const Reading& want : readings) {
    SCOPED_TRACE(want.text + "|" + want.key);
    char value[64] = "untouched";
    const bool found = with_stream(want.text, [&](FILE* stream) {
      EXPECT_EQ(PRO_GetStrLen(want.section, want.key, stream), want.length);
      return PRO_GetStr(want.section, want.key, value, 63, stream) == 0;
    });
    EXPECT_EQ(found, want.value != nullptr);
    EXPECT_STREQ(value, found ? want.value : "untouched");
  }
}

TEST_F(ProfileTest, CutsAValueAtItsLimitAndTerminatesBehindIt) {
  const std::string line = "key=" + std::string(100000, 'x') + "\n";
  for (const int limit : {0, 1, 99999, 100000, 100001}) {
    std::string value(static_cast<size_t>(limit) + 2, '~');
    EXPECT_EQ(with_stream(line,
                          [&](FILE* stream) {
                            return PRO_GetStr(nullptr, "key", value.data(), limit, stream);
                          }),
              0);
    const auto length = static_cast<size_t>(std::min(limit, 100000));
    EXPECT_EQ(value.substr(0, length + 1), std::string(length, 'x') + '\0') << limit;
    EXPECT_EQ(value.back(), '~') << limit;
  }
}

TEST_F(ProfileTest, TakesDecimalNumbersOnly) {
  const std::pair<const char*, int> values[] = {
      {"21", 21}, {" -7 ", -7}, {"+5\r", 5}, {"010", 10}, {"2147483647", INT_MAX}};
  const char* const refused[] = {"", " ", "x", "5x", "0x10", "1.5", "1 2", "+-1", "2147483648"};
  int number = 0;
  const auto get = [&](FILE* stream) { return PRO_GetInt("s", "n", &number, stream); };
  for (const auto& [text, want] : values) {
    EXPECT_EQ(with_stream(std::string("[s]\nn=") + text + "\n", get), 0) << text;
    EXPECT_EQ(number, want) << text;
  }
  number = 42;
  for (const char* text : refused) {
    EXPECT_EQ(with_stream(std::string("[s]\nn=") + text + "\n", get), -1) << text;
    EXPECT_EQ(number, 42) << text;
  }
}

TEST_F(ProfileTest, LeavesTheStreamBehindTheHeader) {
  const std::string rest = with_stream("a=1\n[s] x\nb=2\n", [](FILE* stream) {
    EXPECT_EQ(fseek(stream, 0, SEEK_END), 0);
    EXPECT_EQ(PRO_2sect("none", stream), -1);
    EXPECT_EQ(PRO_2sect("S", stream), 0);
    char line[16] = "";
    EXPECT_NE(fgets(line, sizeof line, stream), nullptr);
    return std::string(line);
  });
  EXPECT_EQ(rest, "b=2\n");
}

struct Change {
  std::string before;
  const char* section;
  const char* key;
  const char* value;
  std::string after;
};

TEST_F(ProfileTest, ChangesOneLineAndNoOtherByte) {
  const Change changes[] = {
      /* a line replaced in its place, with its own line end */
      {"[a]\n; k=0\n  k = 1 \r\nk=2\n\xFF\n", "a", "k", "v", "[a]\n; k=0\nk=v\r\nk=2\n\xFF\n"},
      {"[b]\nk=1\n[A] x\nk=1\n[a]\nk=1\n", "a", "k", "v", "[b]\nk=1\n[A] x\nk=v\n[a]\nk=1\n"},
      {"k=1", nullptr, "k", "", "k="},
      {"K=1\n", nullptr, "k", "v", "K=1\nk=v\n"},
      /* a line added at the end of the section, before the blank lines that trail it */
      {"[a]\nx\n\n \t\r\n[b]\n", "a", "k", "v", "[a]\nx\nk=v\n\n \t\r\n[b]\n"},
      {"[a]\n\n[b]\n", "a", "k", "v", "[a]\nk=v\n\n[b]\n"},
      {"[a]\n\n# x\n\n", "a", "k", "v", "[a]\n\n# x\nk=v\n\n"},
      {"\n\n[a]\nk=1\n", nullptr, "k", "v", "k=v\n\n\n[a]\nk=1\n"},
      {"[a", nullptr, "k", "v", "k=v\n[a"},
      {"[a]\nx", "a", "k", "v", "[a]\nx\nk=v\n"},
      {"[a]", "a", "k", "v", "[a]\nk=v\n"},
      /* a section added at the end of the file */
      {"x=1", "a", "k", "v", "x=1\n[a]\nk=v\n"},
      {"[b]\n\n", "a", "k", "v", "[b]\n\n[a]\nk=v\n"},
      {"", "a", "k", "v", "[a]\nk=v\n"},
      {"", nullptr, "k", "v", "k=v\n"},
      /* odd keys and values come back as they went in */
      {"a=b\n", nullptr, "a=b", "c", "a=b\na=b=c\n"},
      {"", "A b", "user name", " x = [y]", "[A b]\nuser name= x = [y]\n"},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.before + "|" + change.after);
    write(kPath, change.before);
    EXPECT_EQ(PRO_SetStr(change.section, change.key, change.value, kPath), 0);
    EXPECT_EQ(read(kPath), change.after);
    EXPECT_EQ(PRO_SetStr1(change.section, change.key, change.value, kPath), 0);
    EXPECT_EQ(read(kPath), change.after) << "setting the same again changes nothing";
  }
}

TEST_F(ProfileTest, RefusesWhatWouldNotBeFoundAgain) {
  const Change refused[] = {
      {"", nullptr, "", "v", ""},  {"", nullptr, "[k", "v", ""}, {"", nullptr, "k\nm", "v", ""},
      {"", "a]b", "k", "v", ""},   {"", "a\nb", "k", "v", ""},   {"", "a", "k", "v\nm=w", ""},
      {"", "a", "k", nullptr, ""}, {"", "a", nullptr, "v", ""},
  };
  write(kPath, "[a]\nk=1\n");
  const Snapshot before = snapshot();
  for (const Change& change : refused) {
    EXPECT_EQ(PRO_SetStr(change.section, change.key, change.value, kPath), -1);
  }
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(ProfileTest, SetsAllItemsInOneRewriteOrNone) {
  ProfileItem items[] = {{"port", "21", 7}, {"", "long", 0}, {"new", "", -1}, {"port", "22", 0}};
  memcpy(items[1].key, "key_of_twenty_four_chars", sizeof items[1].key);
  write(kPath, "[n]\nport=1\nkeep=2\n");
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, 4, kPath), 0);
  const std::string after = "[n]\nport=22\nkeep=2\nkey_of_twenty_four_chars=long\nnew=\n";
  EXPECT_EQ(read(kPath), after);
  EXPECT_EQ(std::count(steps.begin(), steps.end(), std::string("rename to ") + kPath), 1);

  items[0].value = "23";
  items[3].value = nullptr;
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, 4, kPath), -1);
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, -1, kPath), -1);
  EXPECT_EQ(PRO_SetMultiItemStr("n", items, 0, "/etc/none.conf"), 0);
  EXPECT_EQ(read(kPath), after);
  EXPECT_FALSE(exists("/etc/none.conf"));
}

TEST_F(ProfileTest, RemovesEverySectionOfTheName) {
  const std::pair<std::string, std::string> files[] = {
      {"top=1\n[a]\nk=1\n\n[b]\nk=2\n[A ] x\nk=3", "top=1\n[b]\nk=2\n"},
      {"[a]\nk=1\n[broken\nk=2\n[a]\n", "[broken\nk=2\n"},
      {"[ab]\na=[a]\n [a]\n", "[ab]\na=[a]\n [a]\n"},
  };
  for (const auto& [before, after] : files) {
    write(kPath, before);
    EXPECT_EQ(PRO_DelSect("a", kPath), 0);
    EXPECT_EQ(read(kPath), after);
  }
  EXPECT_EQ(PRO_DelSect("a", "/etc/none.conf"), -1);
  EXPECT_FALSE(exists("/etc/none.conf"));
}

/* ---- Replacing the file ---- */

constexpr char kOld[] = "k=old\n";
constexpr char kNew[] = "k=new\n";

int set_new(const std::string& path) {
  return PRO_SetStr(nullptr, "k", "new", path.c_str());
}

/* How a process ends that sets the key under the plan. */
int dies_while_setting(const Plan& with) {
  const pid_t child = fork();
  if (child == 0) {
    plan = with;
    _exit(set_new(kPath));
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WEXITSTATUS(status);
}

TEST_F(ProfileTest, GivesTheNewFileItsOwnerBeforeItsContentAndSyncsItBeforeItsName) {
  write(kPath, kOld);
  ASSERT_EQ(chown(kPath, 2000, 501), 0);
  ASSERT_EQ(chmod(kPath, 02640), 0);
  EXPECT_EQ(set_new(kPath), 0);
  EXPECT_EQ(steps, Strings({"own 0", "mode 0", "sync 6", std::string("rename to ") + kPath,
                            "sync folder"}));
  EXPECT_EQ(read(kPath), kNew);
  EXPECT_EQ(owner(kPath), "2000:501");
  EXPECT_EQ(mode(kPath), 02640U);
}

TEST_F(ProfileTest, AStepThatFailsLeavesTheOldFileAndNothingElse) {
  write(kPath, kOld);
  const Snapshot before = snapshot();
  for (const std::string step : {"own 0", "mode 0", "sync 6", "rename to /etc/sample.conf"}) {
    plan = {step, Fate::kFails};
    EXPECT_EQ(set_new(kPath), -1) << step;
    EXPECT_EQ(changes(before), Strings()) << step;
  }
  plan = {"sync folder", Fate::kFails};
  EXPECT_EQ(set_new(kPath), 0) << "the new file is there already";
  EXPECT_EQ(changes(before), Strings({"~/etc/sample.conf"}));
}

TEST_F(ProfileTest, AProcessThatDiesBetweenTwoStepsLeavesTheOldFileOrTheNew) {
  write(kPath, "");
  ASSERT_EQ(chmod(kPath, 0600), 0);
  Snapshot before = snapshot();
  for (const std::string step : {"own 0", "mode 0", "sync 6", "rename to /etc/sample.conf"}) {
    for (const Fate fate : {Fate::kDiesBefore, Fate::kDiesAfter}) {
      write(kPath, kOld);
      ASSERT_EQ(dies_while_setting({step, fate}), kDeath) << step;
      const bool renamed = step.starts_with("rename") && fate == Fate::kDiesAfter;
      EXPECT_EQ(read(kPath), renamed ? kNew : kOld) << step;
    }
  }
  for (const auto& [path, state] : snapshot()) {
    if (before.contains(path)) continue;
    EXPECT_TRUE(path.starts_with("/etc/.profile-")) << path << " could be taken for a file in use";
    EXPECT_EQ(state.mode & 07777, 0600U) << path;
  }
}

TEST_F(ProfileTest, AFullDiskLeavesTheOldFile) {
  mount_volume(2, "128k");
  const std::string path = "/harddisk/volume_2/conf/full.conf";
  write(path, kOld);
  const std::string big(200000, 'x');
  const Snapshot before = snapshot();
  EXPECT_EQ(PRO_SetStr(nullptr, "big", big.c_str(), path.c_str()), -1);
  EXPECT_EQ(changes(before), Strings());
  EXPECT_EQ(set_new(path), 0) << "the room of the failed attempt is free again";
}

TEST_F(ProfileTest, AReadOnlyFolderLeavesTheOldFile) {
  mount_volume(2);
  const std::string volume = "/harddisk/volume_2", path = volume + "/conf/fixed.conf";
  write(path, "[a]\nk=old\n");
  ASSERT_EQ(mount(nullptr, volume.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  const Snapshot before = snapshot();
  EXPECT_EQ(set_new(path), -1);
  EXPECT_EQ(PRO_DelSect("a", path.c_str()), -1);
  EXPECT_EQ(PRO_DelSect("b", path.c_str()), 0) << "nothing to write";
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(ProfileTest, AUserWhoMayNotGiveTheOldOwnerLeavesTheOldFile) {
  ASSERT_EQ(mkdir("/tmp/shared", 0777), 0);
  ASSERT_EQ(chmod("/tmp/shared", 0777), 0);
  write("/tmp/shared/sample.conf", kOld);
  const Snapshot before = snapshot();
  EXPECT_EQ(in_process([] {
              EXPECT_EQ(setuid(2000), 0);
              return static_cast<unsigned>(set_new("/tmp/shared/sample.conf"));
            }),
            UINT_MAX);
  EXPECT_EQ(changes(before), Strings());
}

TEST_F(ProfileTest, FollowsLinksToTheFileTheyLeadTo) {
  mount_volume(2);
  fs::create_symlink("second", "/etc/first");
  fs::create_symlink("../harddisk/volume_2/conf/real.conf", "/etc/second");
  for (const char* content : {"", kOld}) { /* at first the file is yet to be made */
    if (*content != '\0') write("/etc/first", content);
    EXPECT_EQ(set_new("/etc/first"), 0);
    EXPECT_EQ(read("/harddisk/volume_2/conf/real.conf"), kNew);
    EXPECT_EQ(fs::read_symlink("/etc/first"), "second");
    EXPECT_EQ(fs::read_symlink("/etc/second"), "../harddisk/volume_2/conf/real.conf");
  }
}

TEST_F(ProfileTest, MakesAMissingFileForAllToReadWhateverTheMask) {
  for (const mode_t mask : {0, 077}) {
    (void)umask(mask);
    EXPECT_EQ(PRO_SetInt("a", "n", INT_MIN, kPath), 0);
    EXPECT_EQ(read(kPath), "[a]\nn=-2147483648\n");
    EXPECT_EQ(mode(kPath), 0644U);
    fs::remove(kPath);
  }
}

TEST_F(ProfileTest, RefusesWhatIsNoFile) {
  fs::create_symlink("loop", "/etc/loop");
  ASSERT_EQ(mkfifo("/etc/pipe", 0644), 0);
  const Snapshot before = snapshot();
  for (const char* path : {"", "/etc", "/etc/", "/etc/loop", "/etc/pipe", "/none/x", "/dev/null"}) {
    EXPECT_EQ(set_new(path), -1) << path;
    EXPECT_EQ(PRO_DelSect("a", path), -1) << path;
  }
  EXPECT_EQ(changes(before), Strings());
}

}  // namespace
