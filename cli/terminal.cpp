#include "cli/terminal.h"

#include <unistd.h>

namespace fileshare {
namespace {

volatile std::sig_atomic_t caught_signal = 0;

void remember_signal(int number) {
  caught_signal = number;
}

}  // namespace

QuietTerminal::QuietTerminal() {
  caught_signal = 0;
  struct sigaction remember {};
  remember.sa_handler = remember_signal;  // without SA_RESTART, so that read returns
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    (void)sigaction(kSignals[i], &remember, &actions_[i]);  // fails for no signal of the list
  }
  if (tcgetattr(STDIN_FILENO, &before_) != 0) return;
  termios quiet = before_;
  quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  quiet.c_lflag |= ECHONL;  // the end of the line is shown
  changed_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
}

QuietTerminal::~QuietTerminal() {
  if (changed_) (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);  // nothing else can be done
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    (void)sigaction(kSignals[i], &actions_[i], nullptr);
  }
  const int held_up = caught_signal;
  if (held_up != 0) (void)raise(held_up);
}

}  // namespace fileshare
