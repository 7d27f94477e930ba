#include "shares/share_registry.h"

#include <tuple>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "conf/names.h"
#include "conf/text.h"
#include "conf/whole_value.h"
#include "platform/profile/profile.h"
#include "shares/registry_value.h"

namespace filesharing {
const char* registry_file(std::string_view share) {
  return is_removable_share(share) ? paths::kRemovableShares : paths::kShares;
}

void make_removable_registry() {
  constexpr mode_t kMode = 0644;
  const int file = open(paths::kRemovableShares, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
  if (file >= 0) {
    std::ignore = fchmod(file, kMode);  // whatever the mask of the page; it is readable anyway
    std::ignore = close(file);          // nothing was written
  }
}

RegistryReader::RegistryReader(const char* path)
    : stream_(open_stream(path, "r")), lines_(stream_.get()) {}

bool RegistryReader::next() {
  while (opened() && lines_.next()) {
    const Halves halves = split_at(lines_.text(), '=');
    if (halves.found) {
      name_ = halves.head;
      value_ = halves.tail;
      return true;
    }
  }
  return false;
}

Result read_registered_value(const char* name, std::optional<std::string>& value) {
  make_removable_registry();
  Result result = FSH_CANNOT_OPEN;
  for (const char* path : kRegistryFiles) {
    const Stream stream = open_stream(path, "r");
    if (!stream) {
      value.reset();
      continue;
    }
    result = FSH_OK;
    value = read_whole_value(name, stream.get());
    if (value && !value->empty()) {
      break;
    }
  }
  return result;
}

Result register_share(const ShareInfo& share, std::string_view access_list) {
  const std::string value = registry_value(share, access_list);
  return PRO_SetStr(nullptr, share.name, value.c_str(), registry_file(share.name)) == 0
             ? FSH_OK
             : FSH_FAILED;
}

void list_on_volume(const ShareInfo& share, std::string_view access_list,
                    const std::string& name_on_volume) {
  if (!is_removable_share(share.name)) {
    const std::string value = volume_value(registry_value(share, access_list));
    // A list that can not be written has no code: a volume that is not there is told by its folder.
    std::ignore = PRO_SetStr(nullptr, name_on_volume.c_str(), value.c_str(),
                             paths::volume_shares(share.volume).c_str());
  }
}

ShareInfo written_fields(const ShareInfo& record) {
  ShareInfo share{};
  copy_field(share.name, field_text(record.name));
  copy_field(share.comment, field_text(record.comment));
  copy_field(share.path, field_text(record.path));
  share.volume = record.volume;
  share.suffixed = record.suffixed;
  return share;
}

}  // namespace filesharing
