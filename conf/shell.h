// Running commands. Nothing else in the library calls system(3) or touches SIGCHLD outside a
// detached process.
#ifndef FILESHARING_CONF_SHELL_H
#define FILESHARING_CONF_SHELL_H

#include <string>
#include <string_view>

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

}  // namespace filesharing

#endif
