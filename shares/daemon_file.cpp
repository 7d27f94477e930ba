#include "shares/daemon_file.h"

#include "conf/file_rewrite.h"

namespace filesharing {

Result rewrite_daemon_file(const char* path, Result not_written, const EditText& edit) {
  FileRewrite rewrite(path);
  if (const Result failed = rewrite.open()) {
    return failed;
  }
  const std::string text = read_rest(rewrite.source());
  if (std::ferror(rewrite.source()) != 0) {
    return not_written;
  }
  rewrite.write(edit(text));
  return rewrite.commit({.runs = 2, .settle_seconds = 2, .failure = not_written});
}

}  // namespace filesharing
