// The question before verbs that can not be taken back.
#ifndef FILESHARE_CONFIRM_H
#define FILESHARE_CONFIRM_H

#include <CLI/CLI.hpp>
#include <string_view>

namespace fileshare {

// Adds the flag --yes.
void add_yes(CLI::App& verb, bool& yes);

// 0 when the user agrees: with --yes, or by typing "yes" at a terminal. Else says that nothing was
// done and gives the exit status. deed completes "This will ...", as in "delete every user".
int confirm(bool yes, std::string_view deed);

}  // namespace fileshare

#endif
