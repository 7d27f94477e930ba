#include "shares/removable_entries.h"

#include "conf/paths.h"
#include "conf/text.h"
#include "filesharing/types.h"
#include "shares/access_text.h"

namespace filesharing {

namespace {

constexpr int kRemovableVolumes[] = {3, 4};

std::string all_users() {
  return access_name(kAdministrators) + ',' + access_name(kEveryone);
}

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

std::string removable_smb_section(const RemovableMount& mount) {
  const std::string users = all_users();
  // Kept: blanks round some of the "=", unlike in the sections of the data volumes.
  return format(
      "[%s]\n"
      "valid users=%s\n"
      "comment = For everyone\n"
      "path=%s\n"
      "read only = yes\n"
      "write list= %s\n",
      std::string(mount.name).c_str(), users.c_str(), std::string(mount.folder).c_str(),
      mount.writable ? users.c_str() : "");
}

std::string removable_afp_line(const RemovableMount& mount) {
  const std::string users = all_users();
  const std::string writers = mount.writable ? "rwlist:" + users + ' ' : std::string();
  return format("\"%s/\" \"[%s]\" %sallow:%s\n", std::string(mount.folder).c_str(),
                std::string(mount.name).c_str(), writers.c_str(), users.c_str());
}

}  // namespace filesharing
