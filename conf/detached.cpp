#include "conf/detached.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <tuple>

#include "conf/shell.h"

namespace filesharing {

namespace {

constexpr int kDescriptorsClosed = 64;

void leave_session(const Detached& options) {
  setsid();
  if (options.closes_descriptors) {
    for (int descriptor = 0; descriptor < kDescriptorsClosed; ++descriptor) {
      close(descriptor);
    }
  }
}

void settle_in(const Detached& options) {
  if (options.enters_root) {
    std::ignore = chdir("/");  // "/" is always there
  }
  umask(0);
  if (options.child_signal == ChildSignal::kDefault) {
    default_child_signal();
  } else if (options.child_signal == ChildSignal::kIgnored) {
    std::ignore = std::signal(SIGCHLD, SIG_IGN);
  }
  if (options.sleep_seconds > 0) {
    sleep(options.sleep_seconds);
  }
}

}  // namespace

Result run_detached(const Detached& options, const std::function<void()>& work) {
  return run_detached_until_failure(options, [&] {
    work();
    return FSH_OK;
  });
}

Result run_detached_until_failure(const Detached& options, const std::function<Result()>& work) {
  if (fork() != 0) {
    if (options.caller_resets_child_signal) {
      default_child_signal();
    }
    return FSH_OK;
  }
  leave_session(options);
  if (fork() > 0) {
    _exit(0);  // not exit: the page's buffered output is the caller's to write
  }
  settle_in(options);
  STEP(guarded<Result>(FSH_OK, work));
  _exit(0);
}

}  // namespace filesharing
