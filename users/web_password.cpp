#include "users/web_password.h"

#include <sys/stat.h>

#include "conf/file_copy.h"
#include "conf/paths.h"
#include "conf/stream.h"

namespace filesharing {

namespace {
constexpr mode_t kOwnerOnly = 0600;
}

std::string web_password_line(const std::string& name, const PasswordHash& hash) {
  const std::string second = hash.second.empty() ? "" : ',' + hash.second;
  return name + ':' + hash.first + second + '\n';
}

WebPassword write_web_password(const std::string& name, const PasswordHash& hash) {
  const OldContent old(paths::kWebPasswd);
  Stream stream = open_stream(paths::kWebPasswd, "w");
  if (!stream) {
    return WebPassword::kNotOpened;
  }
  const bool protected_first = fchmod(fileno(stream.get()), kOwnerOnly) == 0;
  write_text(stream.get(), web_password_line(name, hash));
  if (!close_written(std::move(stream)) || !protected_first) {
    old.put_back();
    return WebPassword::kNotWritten;
  }
  return WebPassword::kWritten;
}

}  // namespace filesharing
