// The sections of the shares in Samba's files.
#include <tuple>

#include "conf/names.h"
#include "conf/paths.h"
#include "conf/shell.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/daemon_file.h"
#include "shares/smb_section.h"

namespace filesharing {
namespace {

Result set_section(const ShareInfo& share, bool read_only) {
  return rewrite_daemon_file(
      paths::kSmbConf, FSH_SMB_SHARES_NOT_WRITTEN, [&](std::string_view text) {
        return with_smb_section(text, field_text(share.name), smb_section_body(share, read_only));
      });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned SetSmbShare(const ShareInfo* record, unsigned read_only) {
  default_child_signal();
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_SMB_SHARES_NOT_WRITTEN, [&] { return set_section(*record, read_only != 0); });
}

unsigned WriteSmbShare(const ShareInfo* record) {
  return SetSmbShare(record, 0);
}

void write_share(const ShareInfo* record, FILE* file, unsigned read_only) {
  if (record == nullptr || file == nullptr) {
    return;
  }
  // Without memory nothing is written: there is no result to tell it.
  std::ignore = guarded(FSH_NO_MEMORY, [&] {
    write_text(file, smb_section_body(*record, read_only != 0));
    return FSH_OK;
  });
}

unsigned DelShareFromSMB(const char* name) {
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  return static_cast<unsigned>(
      PRO_DelSect(name, is_removable_share(name) ? paths::kRemovableSmbConf : paths::kSmbConf));
}
