#include "tests/device_test.h"

#include <fcntl.h>
#include <mntent.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <utility>

#include "tests/recorded_calls.h"

namespace fs = std::filesystem;

extern "C" void __lsan_do_leak_check() __attribute__((weak));

namespace {

constexpr const char* kPlans = "/run/stand_in";
constexpr const char* kWatched[] = {"/etc", "/harddisk", "/home", "/tmp", "/usr/local/CGI_ds.conf",
                                    "/var"};

constexpr int kSanitizerFault = 99;
constexpr const char* kSanitizerOptions = "exitcode=99:verify_asan_link_order=0";

/* Out of the reach of detached processes, which close the descriptors 0 to 63. */
constexpr int kFirstHighDescriptor = 100;

std::string volume_folder(int number) {
  return "/harddisk/volume_" + std::to_string(number);
}

/* Tests rewrite /etc: they run in the device or not at all. */
void refuse_outside_device() {
  struct statfs root = {};
  constexpr long kTmpfs = 0x01021994;
  if (statfs("/", &root) == 0 && root.f_type == kTmpfs && fs::is_directory(kPlans)) return;
  (void)std::fputs("run the tests through device/enter: they change /etc\n", stderr);
  std::exit(1);
}

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  if (in) content << in.rdbuf();
  EXPECT_TRUE(in.is_open()) << path;
  return std::move(content).str();
}

void spill(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
  out.close();
  EXPECT_TRUE(out) << path;
}

FileState look(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  FileState state{status.st_mode, status.st_uid, status.st_gid, ""};
  if (S_ISLNK(status.st_mode)) state.content = fs::read_symlink(path).string();
  if (S_ISREG(status.st_mode)) state.content = slurp(path);
  return state;
}

Snapshot look_at_all() {
  Snapshot all;
  for (const char* top : kWatched) {
    if (!fs::exists(top)) continue;
    all.emplace(top, look(top));
    if (!fs::is_directory(top)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(top)) {
      all.emplace(entry.path().string(), look(entry.path().string()));
    }
  }
  all.erase(kCommandLog);
  return all;
}

void put(const std::string& path, const FileState& state) {
  if (S_ISDIR(state.mode)) {
    (void)mkdir(path.c_str(), 0700); /* a folder that is there only gets its mode back */
  } else {
    fs::remove_all(path);
    if (S_ISLNK(state.mode)) {
      fs::create_symlink(state.content, path);
    } else {
      spill(path, state.content);
    }
  }
  EXPECT_EQ(lchown(path.c_str(), state.owner, state.group), 0) << path;
  if (!S_ISLNK(state.mode)) {
    EXPECT_EQ(chmod(path.c_str(), state.mode & 07777), 0) << path;
  }
}

/* Parents sort before what is in them, so going forward makes and going backward removes. */
void bring_back(const Snapshot& pristine) {
  const Snapshot now = look_at_all();
  for (auto file = now.rbegin(); file != now.rend(); ++file) {
    const auto was = pristine.find(file->first);
    if (was == pristine.end() || (was->second.mode & S_IFMT) != (file->second.mode & S_IFMT)) {
      fs::remove_all(file->first);
    }
  }
  for (const auto& [path, state] : pristine) {
    const auto is = now.find(path);
    if (is == now.end() || !(is->second == state)) put(path, state);
  }
}

void mount_empty(int number, const std::string& size) {
  const std::string folder = volume_folder(number);
  const std::string options = "mode=777,size=" + size;
  ASSERT_EQ(mount(folder.c_str(), folder.c_str(), "tmpfs", 0, options.c_str()), 0) << folder;
}

/* Volumes and whatever a test has mounted in them or elsewhere, the last one first; detached, since
 * a process may still stand there. */
void unmount_all() {
  Strings points;
  FILE* const mounts = setmntent("/proc/mounts", "re");
  while (const mntent* const entry = getmntent(mounts)) {
    const std::string point = entry->mnt_dir;
    if (point.starts_with("/harddisk/") || point.starts_with("/tmp/")) points.push_back(point);
  }
  (void)endmntent(mounts);
  for (auto point = points.rbegin(); point != points.rend(); ++point) {
    EXPECT_EQ(umount2(point->c_str(), MNT_DETACH), 0) << *point;
  }
}

void plan(const std::string& name, int nth, const std::string& action, int value) {
  const std::string path = std::string(kPlans) + "/" + name;
  if (fs::remove(path + ".calls")) {
    fs::remove(path); /* made for calls that have been counted */
  }
  std::ofstream(path, std::ios::app) << nth << ' ' << action << ' ' << value << '\n';
}

/* Characters that mkstemp chose, wherever a path with them ends. */
std::string without_random_part(const std::string& text) {
  static const std::regex random("(/(tmpfile|tmp)\\.)[A-Za-z0-9]{6}(?![A-Za-z0-9])");
  return std::regex_replace(text, random, "$1XXXXXX");
}

/* How a process ended, as the shell tells it; a fault that a sanitizer found fails the test. */
int exit_code(int status) {
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  EXPECT_NE(WEXITSTATUS(status), kSanitizerFault);
  return WEXITSTATUS(status);
}

struct Result {
  pid_t process;
  unsigned value;
};

/* In the process of in_process: make the call, send what it returned, end. */
[[noreturn]] void call_and_exit(const std::function<unsigned()>& call, int results) {
  const pid_t self = getpid();
  const unsigned value = call();
  const Result result{getpid(), value};
  const bool sent = write(results, &result, sizeof result) == sizeof result;
  (void)std::fflush(nullptr);
  /* A copy of this process that came back from the call has shut its standard error. */
  if (getpid() == self && __lsan_do_leak_check) __lsan_do_leak_check();
  _exit(sent && !testing::Test::HasFailure() ? 0 : 1);
}

int memory_file(const std::string& content) {
  const int file = memfd_create("standard stream", MFD_CLOEXEC);
  EXPECT_EQ(write(file, content.data(), content.size()), static_cast<ssize_t>(content.size()));
  EXPECT_EQ(lseek(file, 0, SEEK_SET), 0);
  return file;
}

std::string take_memory_file(int file) {
  std::string content(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
  EXPECT_EQ(pread(file, content.data(), content.size(), 0), static_cast<ssize_t>(content.size()));
  close(file);
  return content;
}

/* Once for the program: the device, taken as its set-up left it. */
class Device : public testing::Environment {
 public:
  void SetUp() override {
    refuse_outside_device();
    /* Detached processes become children of this one, if it is not the device's first already. */
    ASSERT_TRUE(getpid() == 1 || prctl(PR_SET_CHILD_SUBREAPER, 1) == 0);
    ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
    pristine_ = look_at_all();
  }

  static void renew() {
    unmount_all();
    mount_empty(1, "64m");
    for (const auto& entry : fs::directory_iterator(kPlans)) fs::remove_all(entry);
    bring_back(pristine_);
    spill(kCommandLog, "");
  }

 private:
  static inline Snapshot pristine_;
};

[[maybe_unused]] testing::Environment* const device = testing::AddGlobalTestEnvironment(new Device);

}  // namespace

/* The sanitizers' libraries look these up, so they must be visible to them. */
#pragma GCC visibility push(default)
extern "C" {
/* What the library leaks on purpose: one line for each, "leak:FUNCTION\n", with the reason. */
const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
  return "leak:append_user\n"    // FreeUserList leaves the records of the groups
         "leak:DelAllUser\n"     // the names, after a user that could not be deleted
         "leak:GetAllGroup\n"    // FreeGrpList frees nothing
         "leak:GetGrpShares\n";  // the record, when the shares can not be read
}

const char* __asan_default_options();
const char* __asan_default_options() {
  return kSanitizerOptions;
}
}
#pragma GCC visibility pop

void DeviceTest::SetUp() {
  (void)signal(SIGCHLD, SIG_DFL);
  (void)umask(022);
  ASSERT_EQ(chdir("/"), 0);
  set_sleep_action(0, nullptr);
  set_sync_action(nullptr);
  Device::renew();
  errno = 0;
}

void DeviceTest::TearDown() {
  wait_for_background();
}

std::string DeviceTest::read(const std::string& path) {
  return slurp(path);
}

void DeviceTest::write(const std::string& path, const std::string& content) {
  spill(path, content);
}

bool DeviceTest::exists(const std::string& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0;
}

unsigned DeviceTest::mode(const std::string& path) {
  return look(path).mode & 07777;
}

std::string DeviceTest::owner(const std::string& path) {
  const FileState state = look(path);
  return std::to_string(state.owner) + ":" + std::to_string(state.group);
}

Snapshot DeviceTest::snapshot() {
  return look_at_all();
}

void DeviceTest::restore(const Snapshot& before) {
  bring_back(before);
}

Strings DeviceTest::changes(const Snapshot& before) {
  const Snapshot now = look_at_all();
  std::map<std::string, char> signs;
  for (const auto& [path, state] : before) {
    const auto is = now.find(path);
    if (is == now.end()) {
      signs.emplace(path, '-');
    } else if (!(is->second == state)) {
      signs.emplace(path, '~');
    }
  }
  for (const auto& [path, state] : now) {
    if (before.find(path) == before.end()) signs.emplace(path, '+');
  }
  Strings list;
  for (const auto& [path, sign] : signs) list.push_back(sign + without_random_part(path));
  return list;
}

Strings DeviceTest::commands() {
  std::istringstream log(read(kCommandLog));
  Strings list;
  for (std::string line; std::getline(log, line);) list.push_back(without_random_part(line));
  return list;
}

void DeviceTest::clear_commands() {
  write(kCommandLog, "");
}

void DeviceTest::fail_command(const std::string& name, int nth, int status) {
  plan(name, nth, "exit", status);
}

void DeviceTest::cut_power(int nth, bool half_copied) {
  plan("any", nth, half_copied ? "cut" : "off", 0);
}

void DeviceTest::at_sleep(int nth, std::function<void()> action) {
  set_sleep_action(nth, std::move(action));
}

void DeviceTest::at_sync(std::function<void()> action) {
  set_sync_action(std::move(action));
}

unsigned DeviceTest::in_process(const std::function<unsigned()>& call) {
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const int results = fcntl(ends[1], F_DUPFD_CLOEXEC, kFirstHighDescriptor);
  (void)std::fflush(nullptr);
  const pid_t child = fork();
  EXPECT_GE(child, 0);
  if (child == 0) call_and_exit(call, results);
  close(ends[1]);
  close(results);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(exit_code(status), 0) << "the process of the call crashed or leaked";
  Result result = {};
  while (::read(ends[0], &result, sizeof result) == sizeof result && result.process != child) {
  }
  EXPECT_EQ(result.process, child) << "the call did not return";
  close(ends[0]);
  return result.value;
}

void DeviceTest::wait_for_background() {
  int status = 0;
  while (wait(&status) > 0) (void)exit_code(status); /* how they end is their own affair */
}

Outcome DeviceTest::run(const Strings& arguments, const std::string& input) {
  const int streams[3] = {memory_file(input), memory_file(""), memory_file("")};
  std::vector<char*> words;
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    for (int stream = 0; stream < 3; ++stream) (void)dup2(streams[stream], stream);
    (void)setenv("LD_PRELOAD", "/usr/local/lib/librecorded_calls.so", 1);
    (void)setenv("ASAN_OPTIONS", kSanitizerOptions, 1);
    (void)execvp(words[0], words.data());
    _exit(127);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  close(streams[0]);
  return {exit_code(status), take_memory_file(streams[1]), take_memory_file(streams[2])};
}

void DeviceTest::mount_volume(int number, const std::string& size) {
  mount_empty(number, size);
  fs::create_directories(volume_folder(number) + "/conf/tmp");
  fs::create_directory(volume_folder(number) + "/data");
}

void DeviceTest::unmount_volume(int number) {
  EXPECT_EQ(umount2(volume_folder(number).c_str(), MNT_DETACH), 0);
}
