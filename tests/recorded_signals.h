/* A process that a pid file can name, and that takes note of the signals it gets:
 *
 *   SignalledProcess server("/var/run/media_server.pid");
 *   ... the call ...
 *   EXPECT_EQ(server.signals(), "TERM");   // ends it, which wait_for_background would not
 */
#ifndef TESTS_RECORDED_SIGNALS_H
#define TESTS_RECORDED_SIGNALS_H

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <string>

class SignalledProcess {
 public:
  explicit SignalledProcess(const std::string& pid_file) {
    sigset_t all, before;
    (void)sigfillset(&all);
    (void)sigprocmask(SIG_SETMASK, &all, &before); /* before it is born: none comes too early */
    pid_ = fork();
    if (pid_ == 0) take_note(all);
    (void)sigprocmask(SIG_SETMASK, &before, nullptr);
    std::ofstream(pid_file) << pid_ << '\n';
  }
  SignalledProcess(const SignalledProcess&) = delete;
  SignalledProcess& operator=(const SignalledProcess&) = delete;
  ~SignalledProcess() { (void)signals(); }

  /* "HUP", "TERM", both with a blank between them, "other" or nothing. */
  std::string signals() {
    if (pid_ == 0) return "";
    int status = 0;
    (void)kill(pid_, kEnd);
    (void)waitpid(pid_, &status, 0);
    pid_ = 0;
    const char* const names[] = {"", "HUP", "TERM", "HUP TERM"};
    return WIFEXITED(status) && WEXITSTATUS(status) < 4 ? names[WEXITSTATUS(status)] : "other";
  }

 private:
  /* The lowest pending signal comes first, so this one comes behind those that matter. */
  static constexpr int kEnd = SIGWINCH;

  [[noreturn]] static void take_note(const sigset_t& all) {
    int seen = 0;
    for (int number = 0; sigwait(&all, &number) == 0 && number != kEnd;) {
      seen |= number == SIGHUP ? 1 : number == SIGTERM ? 2 : 4;
    }
    _exit(seen);
  }

  pid_t pid_ = 0;
};

#endif
