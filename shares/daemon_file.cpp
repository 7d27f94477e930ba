#include "shares/daemon_file.h"

#include "conf/file_rewrite.h"

namespace filesharing {

Result rewrite_daemon_file(const char* path, Result not_written, const EditText& edit) {
  FileRewrite rewrite(path);
  STEP(rewrite.open());
  rewrite.write(edit(read_rest(rewrite.source())));
  return rewrite.commit({.runs = 2, .settle_seconds = 2, .failure = not_written});
}

}  // namespace filesharing
