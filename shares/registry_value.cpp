#include "shares/registry_value.h"

#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/shares.h"

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

}  // namespace

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
