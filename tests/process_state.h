/* How a detached process stands, told from within one of its sleeps:
 *
 *   at_sleep(1, note_process_state("/tmp/state"));
 *   ... start it, wait_for_background() ...
 *   EXPECT_EQ(read("/tmp/state"), "folder /, umask 0, session own, SIGCHLD default, 0-63 closed");
 */
#ifndef TESTS_PROCESS_STATE_H
#define TESTS_PROCESS_STATE_H

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

/* "own": neither the caller's session nor one that this process leads, which could get a
 * terminal. */
inline std::string process_state(pid_t callers_session) {
  const pid_t session = getsid(0);
  const bool own = session != callers_session && session != getpid();
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  const char* const child_signal = action.sa_handler == SIG_DFL   ? "default"
                                   : action.sa_handler == SIG_IGN ? "ignored"
                                                                  : "handled";
  bool closed = true;
  for (int descriptor = 0; descriptor < 64; ++descriptor) {
    closed = closed && fcntl(descriptor, F_GETFD) < 0;
  }
  const mode_t mask = umask(0);
  (void)umask(mask);
  return "folder " + std::filesystem::current_path().string() + ", umask " + std::to_string(mask) +
         ", session " + (own ? "own" : "foreign") + ", SIGCHLD " + child_signal + ", 0-63 " +
         (closed ? "closed" : "open");
}

inline long open_descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return std::distance(begin(all), end(all));
}

inline std::function<void()> note_process_state(const std::string& path) {
  return [path, session = getsid(0)] {
    const std::string state = process_state(session);
    std::ofstream(path) << state;
  };
}

#endif
