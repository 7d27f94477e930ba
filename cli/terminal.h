// The terminal while a password is typed.
#ifndef FILESHARE_TERMINAL_H
#define FILESHARE_TERMINAL_H

#include <termios.h>

#include <array>
#include <csignal>
#include <cstddef>

namespace fileshare {

// Turns the echo of standard input off. A signal that would end or stop the program is held up
// until the echo is on again; reading is interrupted by it (EINTR).
class QuietTerminal {
 public:
  QuietTerminal();
  ~QuietTerminal();
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;

 private:
  static constexpr std::array<int, 5> kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};

  termios before_{};
  bool changed_ = false;
  std::array<struct sigaction, kSignals.size()> actions_{};
};

}  // namespace fileshare

#endif
