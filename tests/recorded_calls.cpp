/* Takes the place of the C library's sleep, usleep and sync, for the test programs by being part
 * of them and for the programs that they run by being loaded first. */
#include "tests/recorded_calls.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

const char* const kCommandLog = "/var/log/commands";

namespace {

int sleeps_left = 0;
std::function<void()> sleep_action;
std::function<void()> sync_action;

/* Opened anew each time: detached processes close every descriptor that they inherit. Without
 * memory from the heap, which may be what a test makes run out. */
void record(const char* call, unsigned duration) {
  char line[32];
  const int length = snprintf(line, sizeof line, call, duration);
  const int log = open(kCommandLog, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (log < 0 || write(log, line, static_cast<size_t>(length)) != length) abort();
  close(log);
}

}  // namespace

/* The programs that a program runs, daemons among them, do wait. What valgrind starts is the
 * program itself. */
__attribute__((constructor)) static void spare_other_programs() {
  if (std::strncmp(program_invocation_short_name, "valgrind", 8) == 0) return;
  (void)unsetenv("LD_PRELOAD");
}

void set_sleep_action(int nth, std::function<void()> action) {
  sleeps_left = nth;
  sleep_action = std::move(action);
}

void set_sync_action(std::function<void()> action) {
  sync_action = std::move(action);
}

extern "C" {

__attribute__((visibility("default"))) unsigned sleep(unsigned seconds) {
  record("sleep %u\n", seconds);
  if (sleeps_left > 0 && --sleeps_left == 0) sleep_action();
  return 0;
}

__attribute__((visibility("default"))) int usleep(useconds_t microseconds) {
  record("usleep %u\n", microseconds);
  return 0;
}

__attribute__((visibility("default"))) void sync() {
  record("sync\n", 0);
  if (sync_action) sync_action();
}
}
