// The lines of the shares in the Apple file service's list of folders.
#include <tuple>

#include "conf/paths.h"
#include "conf/shell.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/afp_line.h"
#include "shares/daemon_file.h"

namespace filesharing {
namespace {

Result rewrite_folders(const EditText& edit) {
  return guarded(FSH_AFP_SHARES_NOT_WRITTEN, [&] {
    return rewrite_daemon_file(paths::kAppleVolumes, FSH_AFP_SHARES_NOT_WRITTEN, edit);
  });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned SetAFPShare(const ShareInfo* record, unsigned read_only) {
  default_child_signal();
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  return rewrite_folders([&](std::string_view text) {
    return with_afp_line(text, field_text(record->name), afp_line(*record, read_only != 0));
  });
}

unsigned WriteAFPShare(const ShareInfo* record) {
  return SetAFPShare(record, 0);
}

void write_afp(const ShareInfo* record, FILE* file, unsigned read_only) {
  if (record == nullptr || file == nullptr) {
    return;
  }
  // Without memory nothing is written: there is no result to tell it.
  std::ignore = guarded(FSH_NO_MEMORY, [&] {
    write_text(file, afp_line(*record, read_only != 0));
    return FSH_OK;
  });
}

unsigned DelShareFromAFP(const char* key) {
  if (missing(key)) {
    return FSH_ARGUMENT;
  }
  // The action of SIGCHLD stays the caller's, unlike in SetAFPShare: while it is ignored, the copy
  // counts as failed.
  return rewrite_folders([&](std::string_view text) { return without_afp_lines(text, key); });
}
