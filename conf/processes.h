// Running commands, and work that goes on after the page has its answer. Nothing else in the
// library calls system(3) or touches SIGCHLD outside a detached process.
#ifndef FILESHARING_CONF_PROCESSES_H
#define FILESHARING_CONF_PROCESSES_H

#include <functional>
#include <string>
#include <string_view>

#include "conf/result.h"

namespace filesharing {

// Formats a command line and runs it through the shell. The status as system(3) gives it; errno is
// 0 before, so that afterwards it tells about this command alone.
[[gnu::format(printf, 1, 2)]] int run_command(const char* pattern, ...);

// With SIGCHLD ignored, as some web servers start their pages, system(3) can not collect its child
// and fails with ECHILD. With the default action it returns the command's real status.
void default_child_signal();

// For between double quotes in a command line: a backslash before double quotes, dollars,
// backslashes and back quotes.
std::string shell_escaped(std::string_view text);

enum class ChildSignal { kUntouched, kDefault, kIgnored };

struct Detached {
  bool closes_descriptors = true;  // 0 to 63, so that the web server sees the page's output end
  bool enters_root = true;         // changes to "/"
  ChildSignal child_signal = ChildSignal::kDefault;
  unsigned sleep_seconds = 0;  // before the work
  bool caller_resets_child_signal = false;
};

// Forks twice and returns FSH_OK to the caller at once, without waiting for either child. When the
// second fork fails, the first child does the work; when the first one fails, nobody does. The
// detached process ends with the work, with status 0.
Result run_detached(const Detached& options, const std::function<void()>& work);

// The same, but a detached process whose work fails does not end: it returns the code out of this
// call, as if it were the caller.
Result run_detached_until_failure(const Detached& options, const std::function<Result()>& work);

// Opens /etc/inetd.conf to every reader again and stops the inetd that runs.
void stop_inetd();

// Starts inetd a second later, in a process of its own: the one that is stopped has let go of its
// ports by then. FSH_OK, at once.
Result start_inetd_detached();

}  // namespace filesharing

#endif
