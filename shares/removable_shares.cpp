#include "shares/removable_shares.h"

#include <tuple>

#include "conf/appended_file.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/conf.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/afp_file.h"
#include "shares/smb_file.h"

namespace filesharing {
namespace {

constexpr int kFailed = -1;
constexpr std::size_t kPieceLength = 128;

constexpr int kRemovableVolumes[] = {3, 4};

std::optional<RemovableMount> mount_at(std::string_view found, int volume) {
  const std::size_t end = found.find_first_of(" \t");
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view folder = found.substr(0, end);
  return RemovableMount{
      .folder = folder,
      .name = folder.substr(folder.rfind('/') + 1),
      .volume = volume,
      .writable = found.find("rw,", end) != std::string_view::npos,
  };
}

int add_shares(const std::string& disk) {
  const Stream mounts = open_stream(paths::kMounts, "r");
  AppendedFile registry(paths::kRemovableShares);
  AppendedFile smb(paths::kRemovableSmbConf);
  AppendedFile afp(paths::kAppleVolumes);
  if (!mounts || !registry.opened() || !smb.opened() || !afp.opened()) {
    return kFailed;
  }
  // Kept: a line is read in pieces. A mount point across two of them is no share, and options in
  // the next one do not count.
  for (PieceReader piece(mounts.get(), kPieceLength); piece.next();) {
    if (const auto mount = removable_mount(piece.text(), disk)) {
      registry.append(removable_registry_line(*mount));
      smb.append(removable_smb_section(*mount));
      afp.append(removable_afp_line(*mount));
    }
  }
  if (!registry.flush() || !smb.flush() || !afp.flush()) {
    return kFailed;
  }
  for (AppendedFile* const file : {&registry, &smb, &afp}) {
    file->keep();
  }
  return 0;
}

// What one file no longer holds is no reason to keep it in the others: results do not count.
void delete_share(const std::string& name, int volume) {
  std::ignore = DelKeyFromConf(name.c_str(), paths::kRemovableShares);
  std::ignore = PRO_DelSect(name.c_str(), paths::kRemovableSmbConf);
  const std::string folder = '"' + paths::volume_data(volume) + '/' + name + "/\"";
  std::ignore = DelShareFromAFP(folder.c_str());
}

int delete_shares(const std::string& disk, int volume, int count) {
  for (int deleted = 0; deleted < count; ++deleted) {
    delete_share(disk + '_' + std::to_string(deleted + 1), volume);
  }
  return 0;
}

}  // namespace

std::string removable_disk(std::string_view prefix, std::int64_t index) {
  return std::string(prefix) + '_' + std::to_string(index + 1);
}

std::optional<RemovableMount> removable_mount(std::string_view line, const std::string& disk) {
  for (const int volume : kRemovableVolumes) {
    const std::size_t at = line.find(paths::volume_data(volume) + '/' + disk);
    if (at != std::string_view::npos) {
      return mount_at(line.substr(at), volume);
    }
  }
  return std::nullopt;
}

std::string removable_registry_line(const RemovableMount& mount) {
  const int rights = mount.writable ? FSH_READ_WRITE : FSH_READ_ONLY;
  const std::string name(mount.name);
  return format("%s=0:%d:For everyone:/%s/:%s:%d,%s:%d\n", name.c_str(), mount.volume, name.c_str(),
                kAdministrators.data(), rights, kEveryone.data(), rights);
}

}  // namespace filesharing

using namespace filesharing;

int AddWinShares(const char* prefix, int index) {
  if (prefix == nullptr) {
    return kFailed;
  }
  return guarded(kFailed, [&] { return add_shares(removable_disk(prefix, index)); });
}

int DelWinShares(const char* prefix, int index, int count) {
  if (prefix == nullptr) {
    return kFailed;
  }
  return guarded(kFailed, [&] {
    return delete_shares(removable_disk(prefix, index), index != 0 ? 4 : 3, count);
  });
}
