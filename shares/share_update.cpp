// Updating a share: its comment, folder, volume or name.
#include <tuple>

#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/conf.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"
#include "shares/share_folder.h"
#include "shares/share_registry.h"

namespace filesharing {
namespace {

// The old name's line in the list of the old volume. A removable share normally has none there, nor
// its volume a list, so what comes of it is told for the others alone.
Result counted_unless_removable(const char* share, Result result) {
  return is_removable_share(share) ? FSH_OK : result;
}

Result leave_old_volume(const char* old_name, const ShareInfo& old_share, const ShareInfo& record) {
  if (old_share.volume == record.volume) {
    return FSH_OK;
  }
  const std::string list = paths::volume_shares(old_share.volume);
  // Deleting from a list that is not there would leave an empty temporary file.
  if (is_removable_share(old_name) && !open_stream(list, "r")) {
    return FSH_OK;
  }
  return counted_unless_removable(old_name, DelKeyItem(old_name, list.c_str(), '='));
}

Result rename_in_volume(const char* old_name, const ShareInfo& old_share, const ShareInfo& record) {
  if (old_share.volume != record.volume) {
    return FSH_OK;
  }
  return counted_unless_removable(
      old_name, RenameKey(old_name, record.name, paths::volume_shares(old_share.volume).c_str()));
}

// Kept: the AFP line under the old name stays, and so does a removable share's registry line.
Result rename_share(const char* old_name, const ShareInfo& old_share, ShareInfo& record) {
  STEP(RenameKey(old_name, record.name, paths::kShares));
  STEP(rename_in_volume(old_name, old_share, record));
  STEP(RenameSect(old_name, record.name, paths::kSmbConf));
  record.suffixed = 0;
  return FSH_OK;
}

Result write_share_with(ShareGroup* groups, const ShareInfo& record) {
  ShareInfo share = written_fields(record);
  share.groups = groups;
  STEP(AddShareWithGroup(&share));
  return is_removable_share(share.name) ? FSH_OK
                                        : prepare_share_folder(share, FolderQuotes::kPathAlone);
}

Result update_share(const char* old_name, ShareInfo& record) {
  ShareGroupInfo access{};
  copy_field(access.name, old_name);
  STEP(GetShareGroup(&access));
  const AccessList owner(access.groups);
  ShareInfo old_share{};
  copy_field(old_share.name, old_name);
  STEP(GetShareInfo(&old_share));
  STEP(leave_old_volume(old_name, old_share, record));
  if (std::string_view(old_name) != record.name) {
    STEP(rename_share(old_name, old_share, record));
  }
  return write_share_with(access.groups, record);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned UpdateShare(const char* old_name, ShareInfo* record) {
  default_child_signal();
  if (missing(old_name) || record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_texts(*record);
  if (ShareExist(old_name) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  if (std::string_view(old_name) != record->name && ShareExist(record->name) != 0) {
    return FSH_SHARE_EXISTS;
  }
  // Kept: taken locks and a taken name are told by one code.
  const TransactionOptions options{.mask = kShareFiles,
                                   .busy = FSH_UPDATE_SHARE_BUSY,
                                   .no_room = FSH_SMB_SHARES_NOT_WRITTEN,
                                   .adds = kMostShareBytes,
                                   .registers = true,
                                   .mirrors = false};
  return transact(options, [&] { return update_share(old_name, *record); });
}
