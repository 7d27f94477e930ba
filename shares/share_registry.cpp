#include "shares/share_registry.h"

#include <tuple>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>

#include "conf/names.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr std::size_t kVolumeCut = 4;  // "0:1:"

// Takes a field off the front of rest. Nothing when no ":" ends it, or the line ends behind it.
std::optional<std::string_view> take_field(std::string_view& rest) {
  const Halves halves = split_at(rest, ':');
  if (!halves.found || halves.tail.starts_with('\r') || halves.tail.starts_with('\n')) {
    return std::nullopt;
  }
  rest = halves.tail;
  return halves.head;
}

// Texts that equals_ignoring_case takes for the same have the same key.
std::string key_of(std::string_view name) {
  std::string key(name);
  for (char& character : key) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return key;
}

}  // namespace

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

std::optional<RegistryValue> parse_registry_value(std::string_view value) {
  const auto suffixed = take_field(value);
  const auto volume = suffixed ? take_field(value) : std::nullopt;
  const auto comment = volume ? take_field(value) : std::nullopt;
  if (!comment) {
    return std::nullopt;
  }
  const Halves path = split_at(value, ':');
  return RegistryValue{.suffixed = to_int(*suffixed),
                       .volume = to_int(*volume),
                       .comment = *comment,
                       .path = path.found ? path.head : without_line_end(path.head),
                       .access_list = path.tail};
}

void fill_share(const RegistryValue& value, ShareInfo& share) {
  share.suffixed = value.suffixed;
  share.volume = value.volume;
  copy_field(share.comment, value.comment);
  copy_field(share.path, value.path);
}

std::string registry_value(const ShareInfo& share, std::string_view access_list) {
  const bool has_end = std::string_view(share.path).ends_with('/');
  return format("%d:%d:%s:%s%s", share.suffixed, share.volume, share.comment, share.path,
                has_end ? "" : "/") +
         std::string(access_list);
}

std::string volume_value(std::string_view registry_value) {
  // Kept: always four characters, so the value of a volume 10 or a suffix mark 12 is cut askew.
  return std::string(registry_value.substr(std::min(kVolumeCut, registry_value.size())));
}

std::string volume_share_name(const ShareInfo& share) {
  const std::string_view path = share.path;
  const std::string_view whole = share.name;
  std::string_view name = whole;
  if (share.suffixed != 0) {
    name = name.substr(0, name.rfind('~'));
  }
  // The public shares are "DISK 1" and "DISK 2" on the network and "DISK" on their volumes.
  if ((path == "/" || path == "/public/" || path == "/public") &&
      whole.find_first_of("12") != std::string_view::npos) {
    name = name.substr(0, name.rfind(' '));
  }
  return std::string(name);
}

RegistryIndex::RegistryIndex() {
  for (std::size_t i = 0; i < files_.size(); ++i) {
    files_[i] = read(kRegistryFiles[i]);
  }
}

RegistryIndex::Values RegistryIndex::read(const char* path) {
  Values values;
  const Stream stream = open_stream(path, "r");
  if (!stream) {
    return values;
  }
  for (LineReader line(stream.get()); line.next() && !line.text().starts_with('[');) {
    const Halves share = split_at(line.text(), '=');
    if (share.found) {
      values.try_emplace(key_of(share.head), without_line_end(share.tail));
    }
  }
  return values;
}

bool RegistryIndex::fill(ShareInfo& share) const {
  const std::string key = key_of(share.name);
  for (const Values& values : files_) {
    const auto found = values.find(key);
    const auto value =
        found == values.end() ? std::nullopt : parse_registry_value(found->second.c_str());
    if (value) {
      fill_share(*value, share);
      return true;
    }
  }
  return false;
}

}  // namespace filesharing

using namespace filesharing;

unsigned ShareStringPar(const char* value, ShareInfo* record) {
  if (missing(value) || record == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&]() -> Result {
    const auto fields = parse_registry_value(value);
    if (!fields) {
      return FSH_MALFORMED;
    }
    fill_share(*fields, *record);
    // The access list is the end of the value, and so of the text.
    record->groups = fields->access_list.empty() ? nullptr : GetShGroup(fields->access_list.data());
    return FSH_OK;
  });
}
