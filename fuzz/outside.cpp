#include "fuzz/outside.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "fuzz/fuzz_input.h"

extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*on_malloc)(const volatile void* block, std::size_t size),
    void (*on_free)(const volatile void* block)) __attribute__((weak));

namespace {

thread_local bool replaced = false;
bool in_child = false;
int next_closed = -1;  // of the descriptors that a detached process closes, which are ours here
int commands_left = 0;
int failed_status = 0;
std::map<std::string, std::string*, std::less<>> served;
std::set<std::FILE*> streams;

// Blocks that were allocated and not freed during a call; a fixed table, since a container would
// allocate. A call that leaves more keeps the rest.
bool watching = false;
std::array<const volatile void*, 65536> blocks;
std::size_t block_count = 0;

void note_malloc(const volatile void* block, std::size_t /*size*/) {
  if (watching && replaced && block_count < blocks.size()) blocks[block_count++] = block;
}

void note_free(const volatile void* block) {
  if (!watching || !replaced || block == nullptr) return;
  for (std::size_t at = block_count; at-- > 0;) {
    if (blocks[at] != block) continue;
    blocks[at] = blocks[--block_count];
    return;
  }
}

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

class WithoutReplacement {
 public:
  WithoutReplacement() : was_(replaced) { replaced = false; }
  WithoutReplacement(const WithoutReplacement&) = delete;
  WithoutReplacement& operator=(const WithoutReplacement&) = delete;
  ~WithoutReplacement() { replaced = was_; }

 private:
  bool was_;
};

bool copy_file(const char* from, const char* to) {
  const int source = open(from, O_RDONLY | O_CLOEXEC);
  if (source < 0) return false;
  const int target = open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  std::array<char, 8192> block;
  ssize_t length = 0;
  while (target >= 0 && (length = read(source, block.data(), block.size())) > 0) {
    fuzz::require(write(target, block.data(), static_cast<std::size_t>(length)) == length);
  }
  close(source);
  return target >= 0 && close(target) == 0;
}

// cp is done, since operations read what they have copied; the other commands count as done.
int run(const char* command) {
  if (commands_left > 0 && --commands_left == 0) return failed_status;
  std::istringstream words(command);
  std::string program;
  std::string option;
  std::string from;
  std::string to;
  words >> program;
  if (program != "/bin/cp") return 0;
  words >> option >> from >> to;
  return copy_file(from.c_str(), to.c_str()) ? 0 : 256;
}

}  // namespace

namespace fuzz {

Outside::Outside() {
  static const bool hooked = __sanitizer_install_malloc_and_free_hooks != nullptr &&
                             __sanitizer_install_malloc_and_free_hooks(note_malloc, note_free) != 0;
  static_cast<void>(hooked);
  commands_left = 0;
  in_child = false;
  replaced = true;
}

Outside::~Outside() {
  replaced = false;
  served.clear();
  static_cast<void>(umask(022));
}

void Outside::serve(const char* path, std::string& text) {
  served[path] = &text;
}

void Outside::fork_to_child() {
  in_child = true;
}

void Outside::fail_command(int nth, int status) {
  commands_left = nth;
  failed_status = status;
}

Leftovers::Leftovers(Leaves allowed) : allowed_(allowed) {
  const WithoutReplacement real_calls;
  streams.clear();
  block_count = 0;
  watching = allowed == Leaves::kStreamsAndMemory;
}

Leftovers::~Leftovers() {
  {
    const WithoutReplacement real_calls;
    require(streams.empty() || allowed_ != Leaves::kNothing);
  }
  while (!streams.empty()) {
    std::FILE* const stream = *streams.begin();
    streams.erase(stream);
    static_cast<void>(std::fclose(stream));
  }
  if (watching) {
    watching = false;
    while (block_count > 0) std::free(const_cast<void*>(blocks[--block_count]));
  }
}

}  // namespace fuzz

#pragma GCC visibility push(default)
extern "C" {

int system(const char* command) {
  static const auto real_system = real<int(const char*)>("system");
  if (!replaced) return real_system(command);
  const WithoutReplacement real_calls;
  return run(command);
}

pid_t fork() {
  static const auto real_fork = real<pid_t()>("fork");
  if (!replaced) return real_fork();
  return in_child ? 0 : 4711;
}

pid_t setsid() {
  next_closed = 0;
  return 4711;
}

int close(int descriptor) {
  static const auto real_close = real<int(int)>("close");
  if (replaced && descriptor == next_closed) {
    ++next_closed;
    return 0;
  }
  next_closed = -1;
  return real_close(descriptor);
}

void _exit(int status) {
  static const auto real_exit = real<void(int)>("_exit");
  if (replaced) throw fuzz::ProcessEnded();
  real_exit(status);
  std::abort();
}

int execl(const char* /*path*/, const char* /*name*/, ...) {
  return -1;
}

int kill(pid_t process, int number) {
  static const auto real_kill = real<int(pid_t, int)>("kill");
  return replaced ? 0 : real_kill(process, number);
}

unsigned sleep(unsigned seconds) {
  static const auto real_sleep = real<unsigned(unsigned)>("sleep");
  return replaced ? 0 : real_sleep(seconds);
}

int usleep(useconds_t microseconds) {
  static const auto real_usleep = real<int(useconds_t)>("usleep");
  return replaced ? 0 : real_usleep(microseconds);
}

void sync() {}

// Real, but what the C library keeps for later calls is not the operation's.
struct passwd* getpwnam(const char* name) {
  static const auto real_getpwnam = real<struct passwd*(const char*)>("getpwnam");
  const WithoutReplacement real_calls;
  return real_getpwnam(name);
}

int __cxa_atexit(void (*at_exit)(void*), void* object, void* library) {
  static const auto real_atexit = real<int(void (*)(void*), void*, void*)>("__cxa_atexit");
  const WithoutReplacement real_calls;
  return real_atexit(at_exit, object, library);
}

struct passwd* getpwuid(uid_t uid) {
  static const auto real_getpwuid = real<struct passwd*(uid_t)>("getpwuid");
  const WithoutReplacement real_calls;
  return real_getpwuid(uid);
}

std::FILE* fopen(const char* path, const char* mode) {
  static const auto real_fopen = real<std::FILE*(const char*, const char*)>("fopen");
  if (!replaced) return real_fopen(path, mode);
  const auto text = served.find(std::string_view(path));
  std::FILE* const stream =
      text == served.end() || mode[0] != 'r'
          ? real_fopen(path, mode)
          : (text->second->empty() ? real_fopen("/dev/null", "r")
                                   : fmemopen(text->second->data(), text->second->size(), "r"));
  const WithoutReplacement real_calls;
  if (stream != nullptr) streams.insert(stream);
  return stream;
}

int fclose(std::FILE* stream) {
  static const auto real_fclose = real<int(std::FILE*)>("fclose");
  if (replaced) {
    const WithoutReplacement real_calls;
    streams.erase(stream);
  }
  return real_fclose(stream);
}
}
#pragma GCC visibility pop
