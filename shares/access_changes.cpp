// Giving groups access to shares, and taking it from them.
#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/temporary_file.h"
#include "conf/text.h"
#include "conf/transaction.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/access_list.h"
#include "shares/afp_file.h"
#include "shares/share_registry.h"
#include "shares/smb_file.h"

namespace filesharing {
namespace {

// The groups or shares of a batch, as the caller gave them.
struct Batch {
  const char* const* names;
  int count;

  bool empty() const { return names == nullptr || count <= 0; }
};

// Runs change(name) for each in order; the first failure undoes the whole batch. A name takes at
// most `adds` bytes in a file.
template <class Change>
Result change_access(const Batch& batch, Result busy, Result no_room, std::uint64_t adds,
                     Change change) {
  const TransactionOptions options{.mask = kShareFiles,
                                   .busy = busy,
                                   .no_room = no_room,
                                   .adds = adds * static_cast<std::uint64_t>(batch.count),
                                   .repeats = batch.count > 1,
                                   .registers = true,
                                   .mirrors = false};
  return transact(options, [&] {
    Result result = FSH_OK;
    for (int i = 0; i < batch.count && result == FSH_OK; ++i) {
      result = change(batch.names[i]);
    }
    return result;
  });
}

// ---- Giving access

// A group's name twice in an SMB section, with its quotes.
constexpr std::uint64_t kMostEntryBytes = 64;

Result grant(const char* group, const char* share_name, int read_only) {
  ShareGroup added{};
  copy_field(added.name, group);
  added.rights = read_only != 0 ? FSH_READ_ONLY : FSH_READ_WRITE;

  ShareGroupInfo access{};
  copy_field(access.name, share_name);
  STEP(GetShareGroup(&access));
  AccessList groups(access.groups);
  if (find_group(groups.head(), group) != nullptr) {
    return FSH_ACCESS_EXISTS;
  }
  groups.append() = added;
  ShareInfo share{};
  copy_field(share.name, share_name);
  STEP(GetShareInfo(&share));
  share.groups = groups.head();
  return AddShareWithGroup(&share);
}

// ---- Taking access

// Passes a value through a temporary file, of which it comes back as its first line.
Result pass_through_file(std::string& value) {
  TemporaryFile file;
  if (!file.make(TemporaryPlace::kConfigurationVolume)) {
    return FSH_NO_TEMPORARY;
  }
  Stream target = open_stream(file.path(), "w");
  if (!target) {
    return FSH_CANNOT_OPEN;
  }
  write_text(target.get(), value);
  if (!close_written(std::move(target))) {
    return FSH_ACCESS_NOT_REMOVED;
  }
  const Stream source = open_stream(file.path(), "r");
  if (!source) {
    return FSH_CANNOT_OPEN;
  }
  LineReader line(source.get());
  if (!line.next()) {
    return FSH_ACCESS_NOT_REMOVED;
  }
  value = without_line_end(line.text());
  return FSH_OK;
}

Result store(const std::string& key, std::string value, const std::string& path) {
  STEP(pass_through_file(value));
  return PRO_SetStr(nullptr, key.c_str(), value.c_str(), path.c_str()) == 0
             ? FSH_OK
             : FSH_ACCESS_NOT_REMOVED;
}

Result revoke_in_registry(const char* name, const ShareInfo& share, const std::string& groups) {
  return store(
      name, format("%d:%d:%s:%s", share.suffixed, share.volume, share.comment, share.path) + groups,
      registry_file(name));
}

// Kept: a removable share gets a line in the list of its volume here, as nowhere else.
Result revoke_on_volume(const char* name, const ShareInfo& share, const std::string& groups) {
  const bool is_public = std::string_view(name).starts_with(kPublicShare);
  return store(is_public ? kPublicShare : name, format("%s:%s", share.comment, share.path) + groups,
               paths::volume_shares(share.volume));
}

using EditAccess = std::string (*)(std::string_view text, std::string_view share,
                                   const RemainingGroups& remaining);

// Replaces the share's lists in a daemon's file by what the registry says by now.
Result revoke_in_file(const char* path, const char* group, const char* name, EditAccess edit) {
  FileRewrite rewrite(path);
  STEP(rewrite.open());
  ShareGroupInfo access{};
  copy_field(access.name, name);
  STEP(GetShareGroup(&access));
  const AccessList owner(access.groups);
  rewrite.write(edit(read_rest(rewrite.source()), name, {access.groups, group}));
  return rewrite.commit({.runs = 2, .forgives_echild = true, .failure = FSH_ACCESS_NOT_REMOVED});
}

Result revoke_in_smb(const char* group, const char* name) {
  default_child_signal();
  return revoke_in_file(is_removable_share(name) ? paths::kRemovableSmbConf : paths::kSmbConf,
                        group, name, with_smb_access);
}

Result revoke(const char* group, const char* name) {
  ShareInfo share{};
  copy_field(share.name, name);
  ShareGroupInfo access{};
  copy_field(access.name, name);
  STEP(GetShareInfo(&share));
  STEP(GetShareGroup(&access));
  const AccessList owner(access.groups);
  const std::string groups = access_list_field(access.groups, group);
  // A failing step leaves what the earlier ones have done.
  STEP(revoke_in_registry(name, share, groups));
  STEP(revoke_on_volume(name, share, groups));
  STEP(revoke_in_smb(group, name));
  return revoke_in_file(paths::kAppleVolumes, group, name, with_afp_access);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned AddGroupToShare(const char* group, const char* share, int read_only) {
  if (missing(group) || missing(share)) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return guarded(FSH_NO_MEMORY, [&] { return grant(group, share, read_only); });
}

unsigned AddGroupsToShare(const char* share, const char* const* groups, int count, int read_only) {
  const Batch batch{groups, count};
  if (missing(share) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return change_access(batch, FSH_ADD_ACCESS_BUSY, FSH_SMB_SHARES_NOT_WRITTEN, kMostEntryBytes,
                       [&](const char* group) { return AddGroupToShare(group, share, read_only); });
}

unsigned AddGroupToShares(const char* group, const char* const* shares, int count, int read_only) {
  const Batch batch{shares, count};
  if (missing(group) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  return change_access(batch, FSH_ADD_ACCESS_BUSY, FSH_SMB_SHARES_NOT_WRITTEN, kMostEntryBytes,
                       [&](const char* share) { return AddGroupToShare(group, share, read_only); });
}

unsigned DelGroupFromShare(const char* group, const char* share) {
  if (missing(group) || missing(share)) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return guarded(FSH_NO_MEMORY, [&] { return revoke(group, share); });
}

unsigned DelGroupsFromShare(const char* share, const char* const* groups, int count) {
  const Batch batch{groups, count};
  if (missing(share) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  if (ShareExist(share) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return change_access(batch, FSH_REMOVE_ACCESS_BUSY, FSH_ACCESS_NOT_REMOVED, 0,
                       [&](const char* group) { return DelGroupFromShare(group, share); });
}

unsigned DelGroupFromShares(const char* group, const char* const* shares, int count) {
  const Batch batch{shares, count};
  if (missing(group) || batch.empty()) {
    return FSH_ARGUMENT;
  }
  return change_access(batch, FSH_REMOVE_ACCESS_BUSY, FSH_ACCESS_NOT_REMOVED, 0,
                       [&](const char* share) { return DelGroupFromShare(group, share); });
}
