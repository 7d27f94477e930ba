#include "conf/processes.h"

#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "conf/paths.h"
#include "conf/text.h"
#include "platform/utility/utility.h"

namespace filesharing {

int run_command(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  const std::string command = format_list(pattern, arguments);
  va_end(arguments);
  errno = 0;
  return std::system(command.c_str());
}

void default_child_signal() {
  std::ignore = std::signal(SIGCHLD, SIG_DFL);
}

std::string shell_escaped(std::string_view text) {
  const std::string plain(text);
  std::string escaped(2 * plain.size() + 1, '\0');
  DBCS_SpecialChar(plain.c_str(), escaped.data(), "\"$\\`");
  escaped.resize(std::strlen(escaped.c_str()));
  return escaped;
}

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

void stop_inetd() {
  std::ignore = chmod(paths::kInetd, 0644);  // the copy is in place, with the mode it had
  std::ignore = run_command("/bin/killall inetd 2>/dev/null");  // it need not run
}

Result start_inetd_detached() {
  return run_detached({.closes_descriptors = false, .sleep_seconds = 1}, [] {
    execl(paths::kRestartInetd, "rc.xinetd", static_cast<char*>(nullptr));
  });
}

}  // namespace filesharing
