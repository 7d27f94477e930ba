#include "conf/shell.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/utility/utility.h"

namespace filesharing {

int run_command(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  char* command = nullptr;
  const int length = vasprintf(&command, pattern, arguments);
  va_end(arguments);
  if (length < 0) {
    throw std::bad_alloc();
  }
  errno = 0;
  const int status = std::system(command);
  const int cause = errno;
  std::free(command);
  errno = cause;
  return status;
}

void default_child_signal() {
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
}

std::string shell_escaped(std::string_view text) {
  const std::string plain(text);
  std::string escaped(2 * plain.size() + 1, '\0');
  DBCS_SpecialChar(plain.c_str(), escaped.data(), "\"$\\`");
  escaped.resize(std::strlen(escaped.c_str()));
  return escaped;
}

}  // namespace filesharing
