#include "tests/faults/interposed.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <sstream>
#include <string_view>

#include "tests/recorded_calls.h"

namespace {

constexpr int kCommandFailed = 1 << 8;

/* Shared by all processes of a run. */
struct Run {
  Interposing what;
  int nth;
  int calls;
  size_t length;
  char list[1 << 18];
};

Run& run() {
  static Run* const shared = static_cast<Run*>(
      mmap(nullptr, sizeof(Run), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  return *shared;
}

/* The C library's own. */
template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool faults() {
  return run().what == Interposing::kFaults || run().what == Interposing::kCuts;
}

/* Whether this call is the one to fail. */
bool fails(const char* what, std::string_view path, const char* how = "", int error = EIO) {
  if (!faults() || path == kCommandLog) return false;
  const std::string line = std::string(what) + " " + std::string(path) + how + "\n";
  if (run().length + line.size() < sizeof run().list) {
    std::memcpy(run().list + run().length, line.data(), line.size());
    run().length += line.size();
  }
  if (++run().calls != run().nth) return false;
  errno = error;
  return true;
}

std::string path_of(int descriptor) {
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = readlink(link.c_str(), path, sizeof path);
  return {path, length > 0 ? static_cast<size_t>(length) : 0};
}

/* A command line without what many have. */
std::string shortened(const char* command) {
  static const std::regex noise("^/bin/| -f(?= )| *[0-9]?[<>] ?/dev/null| *2>&1");
  return std::regex_replace(command, noise, "");
}

bool is_copy(const char* command, char (&from)[512], char (&to)[512]) {
  return std::sscanf(command, "/bin/cp -f %511s %511s", from, to) == 2;
}

/* cp, quicker than a process, and without memory from the heap, which may be made to run out. */
int copy(const char* from, const char* to, bool cut = false) {
  char block[4096];
  const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
  const int source = next<decltype(open)>("open")(from, O_RDONLY | O_CLOEXEC);
  const int target = source < 0 ? -1 : next<decltype(open)>("open")(to, flags, 0644);
  bool copied = target >= 0;
  for (ssize_t length; copied && (length = read(source, block, sizeof block)) > 0;) {
    if (cut) length /= 2;
    copied = next<decltype(write)>("write")(target, block, static_cast<size_t>(length)) == length;
    if (cut) break;
  }
  if (source >= 0) close(source);
  if (target >= 0) close(target);
  return copied && !cut ? 0 : kCommandFailed;
}

}  // namespace

void start_interposing(Interposing what, int nth) {
  run().calls = 0;
  run().length = 0;
  run().nth = nth;
  run().what = what;
}

void stop_interposing() {
  run().what = Interposing::kNothing;
}

std::vector<std::string> interposed_calls() {
  std::istringstream lines(std::string(run().list, run().length));
  std::vector<std::string> list;
  for (std::string line; std::getline(lines, line);) list.push_back(line);
  return list;
}

#define INSTEAD __attribute__((visibility("default")))
#define GO_ON(function, ...) next<decltype(function)>(#function)(__VA_ARGS__)

extern "C" {

INSTEAD int system(const char* command) {
  char from[512], to[512];
  if (run().what == Interposing::kNothing) return GO_ON(system, command);
  const bool failed = faults() && fails("run", shortened(command));
  const bool cut = failed && run().what == Interposing::kCuts && is_copy(command, from, to);
  if (failed && !cut) return kCommandFailed;
  if (is_copy(command, from, to)) return copy(from, to, cut);
  return run().what == Interposing::kCommands ? 0 : GO_ON(system, command);
}

/* The caller goes on when the new process has ended. */
INSTEAD pid_t fork() noexcept {
  if (run().what != Interposing::kNothing) {
    if (fails("start a", "process", "", EAGAIN)) return -1;
    const pid_t child = GO_ON(fork);
    siginfo_t end;
    if (child > 0) (void)waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOWAIT);
    return child;
  }
  return GO_ON(fork);
}

INSTEAD int execl(const char* path, const char* name, ...) noexcept {
  if (run().what == Interposing::kCommands) _exit(0);
  if (fails("become", path)) return -1;
  const char* const arguments[] = {name, nullptr}; /* the library passes no others */
  return execv(path, const_cast<char* const*>(arguments));
}

INSTEAD int kill(pid_t process, int signal) noexcept {
  if (run().what == Interposing::kNothing) return GO_ON(kill, process, signal);
  return fails("signal", "process", "", ESRCH) ? -1 : 0;
}

INSTEAD FILE* fopen(const char* path, const char* mode) {
  const bool reads = *mode == 'r' && std::strchr(mode, '+') == nullptr;
  if (fails("open", path, reads ? " to read" : " to write")) return nullptr;
  return GO_ON(fopen, path, mode);
}

INSTEAD int fclose(FILE* stream) {
  const bool failed =
      faults() && __fwritable(stream) != 0 && fails("write", path_of(fileno(stream)));
  const int result = GO_ON(fclose, stream);
  return failed ? EOF : result;
}

INSTEAD int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  const bool reads = (flags & O_ACCMODE) == O_RDONLY;
  if (fails("open", path, reads ? " to read" : " to write")) return -1;
  return GO_ON(open, path, flags, mode);
}

INSTEAD DIR* opendir(const char* path) {
  return fails("open", path, " to list") ? nullptr : GO_ON(opendir, path);
}

INSTEAD int mkstemp(char* path) {
  return fails("make", path, "", ENOSPC) ? -1 : GO_ON(mkstemp, path);
}

INSTEAD int mkostemp(char* path, int flags) {
  return fails("make", path, "", ENOSPC) ? -1 : GO_ON(mkostemp, path, flags);
}

INSTEAD ssize_t write(int file, const void* from, size_t length) {
  if (faults() && fails("write", path_of(file), "", ENOSPC)) return -1;
  return GO_ON(write, file, from, length);
}

INSTEAD int fsync(int file) {
  if (faults() && fails("flush", path_of(file))) return -1;
  return GO_ON(fsync, file);
}

INSTEAD int rename(const char* from, const char* to) noexcept {
  return fails("rename over", to) ? -1 : GO_ON(rename, from, to);
}

INSTEAD int symlink(const char* text, const char* path) noexcept {
  return fails("link", path) ? -1 : GO_ON(symlink, text, path);
}

INSTEAD int unlink(const char* path) noexcept {
  return fails("remove", path) ? -1 : GO_ON(unlink, path);
}

INSTEAD int remove(const char* path) noexcept {
  return fails("remove", path) ? -1 : GO_ON(remove, path);
}

INSTEAD int truncate(const char* path, off_t length) noexcept {
  return fails("cut", path) ? -1 : GO_ON(truncate, path, length);
}

INSTEAD int chmod(const char* path, mode_t mode) noexcept {
  return fails("change mode of", path) ? -1 : GO_ON(chmod, path, mode);
}

INSTEAD int chown(const char* path, uid_t owner, gid_t group) noexcept {
  return fails("change owner of", path) ? -1 : GO_ON(chown, path, owner, group);
}

INSTEAD int fchmod(int file, mode_t mode) noexcept {
  if (faults() && fails("change mode of", path_of(file))) return -1;
  return GO_ON(fchmod, file, mode);
}

INSTEAD int fchown(int file, uid_t owner, gid_t group) noexcept {
  if (faults() && fails("change owner of", path_of(file))) return -1;
  return GO_ON(fchown, file, owner, group);
}
}
