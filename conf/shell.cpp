#include "conf/shell.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <tuple>

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

}  // namespace filesharing
