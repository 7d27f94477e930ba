#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "platform/utility/utility.h"

int SYSTEM(const char* format, ...) {
  if (format == nullptr) return -1;
  char* command = nullptr;
  va_list arguments;
  va_start(arguments, format);
  const int length = vasprintf(&command, format, arguments);
  va_end(arguments);
  if (length < 0) return -1;
  const int status = system(command);
  const int left = errno;  // callers tell a lost status (ECHILD) from a failed command by it
  free(command);
  errno = left;
  return status;
}
