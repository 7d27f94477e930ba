// Errors for the system log.
#include <syslog.h>

#include <string>

#include "conf/result.h"
#include "filesharing/conf.h"

namespace {

// A message is a format without arguments: "%%" and "%m" are all that it can ask for. Any other
// conversion would read an argument that is not there, and is logged as it stands.
std::string as_format(const char* message) {
  std::string pattern;
  for (const char* at = message; *at != '\0'; ++at) {
    pattern += *at;
    if (*at == '%') {
      const bool has_meaning = at[1] == '%' || at[1] == 'm';
      pattern += has_meaning ? *++at : '%';
    }
  }
  return pattern;
}

}  // namespace

void logerr(const char* message) {
  if (message == nullptr) {
    return;
  }
  filesharing::guarded(0, [&] {
    const std::string pattern = as_format(message);
    openlog("FILE_SHARE", 0, LOG_USER);
    syslog(LOG_USER | LOG_ERR, pattern.c_str(), "");
    closelog();
    return 0;
  });
}
