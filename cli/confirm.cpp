#include "cli/confirm.h"

#include <unistd.h>

#include <iostream>
#include <string>

#include "cli/failure.h"

namespace fileshare {

void add_yes(CLI::App& verb, bool& yes) {
  verb.add_flag("--yes", yes, "Do it without asking");
}

int confirm(bool yes, std::string_view deed) {
  if (yes) return kDone;
  if (isatty(STDIN_FILENO) == 0) {
    return refuse("this would " + std::string(deed) + "; give --yes to have it done", kUsageError);
  }
  std::cerr << "This will " << deed << ". Type \"yes\" to go on: " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "yes" ? kDone : refuse("nothing was done", kFailed);
}

}  // namespace fileshare
