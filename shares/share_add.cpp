// Adding a share: AddShare makes a new one, AddShareWithGroup writes one with its access list.
#include <tuple>

#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/shares.h"
#include "shares/access_list.h"
#include "shares/share_folder.h"
#include "shares/share_registry.h"

namespace filesharing {
namespace {

// Spells the path as the disk does, as far as it is there.
void translate_path(ShareInfo& share) {
  constexpr std::size_t kDataFolderCharacters = 23;  // "/harddisk/volume_1/data"
  std::string path = paths::volume_data(share.volume) + share.path;
  // Kept: a path whose letter case was corrected stays as the caller gave it, so the share's folder
  // is made anew beside the one that is there; only one that needed no correction is taken over,
  // with its doubled slashes collapsed.
  if (trans_dir(path.data()) != 0) {
    path.resize(std::strlen(path.c_str()));
    copy_field(share.path,
               std::string_view(path).substr(std::min(kDataFolderCharacters, path.size())));
  }
}

Result write_sections(const ShareInfo& share) {
  STEP(WriteSmbShare(&share));
  return WriteAFPShare(&share);
}

Result add_share(ShareInfo& record) {
  translate_path(record);
  if (dir_shared(record.path, record.volume) != 0) {
    return FSH_FOLDER_SHARED;
  }
  ShareInfo share = written_fields(record);
  share.suffixed = 0;
  const std::string access_list = format(":administrators:%d", FSH_READ_WRITE);
  STEP(register_share(share, access_list));
  list_on_volume(share, access_list, share.name);
  if (!is_removable_share(share.name)) {
    STEP(prepare_share_folder(share, FolderQuotes::kWholePath));
  }
  return write_sections(share);
}

Result add_share_with_group(const ShareInfo& record) {
  ShareInfo share = written_fields(record);
  share.groups = record.groups;
  const std::string access_list = access_list_field(share.groups);
  // A registry that can not be written has no code here: the entries of the daemons follow it.
  std::ignore = register_share(share, access_list);
  list_on_volume(share, access_list, volume_share_name(share));
  return write_sections(share);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddShare(ShareInfo* record) {
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  end_texts(*record);
  if (ShareExist(record->name) != 0) {
    return FSH_SHARE_EXISTS;
  }
  // Kept: no backup is taken, though a failure restores: what comes back is the state before the
  // last operation that did take one.
  const TransactionOptions options{.mask = kShareFiles,
                                   .busy = FSH_SHARE_NOT_ADDED,
                                   .no_room = FSH_SMB_SHARES_NOT_WRITTEN,
                                   .adds = kMostShareBytes,
                                   .registers = true,
                                   .backs_up = false,
                                   .mirrors = false,
                                   .out_of_memory = FSH_SHARE_NOT_ADDED};
  return transact(options, [&] { return add_share(*record); });
}

unsigned AddShareWithGroup(ShareInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return add_share_with_group(*record); });
}
