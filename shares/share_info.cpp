// Looking up one share: whether it exists, its record, its access list.
#include <cstring>
#include <optional>
#include <string>

#include "conf/names.h"
#include "conf/text.h"
#include "filesharing/conf.h"
#include "filesharing/shares.h"
#include "shares/share_registry.h"

namespace filesharing {
namespace {

bool is_registered(std::string_view name) {
  make_removable_registry();
  for (const char* path : kRegistryFiles) {
    for (RegistryReader line(path); line.next();) {
      if (equals_ignoring_case(line.name().substr(0, kMostNameCharacters), name)) {
        return true;
      }
    }
  }
  return false;
}

// Fills the record from one file. FSH_MALFORMED also when the name is not there.
Result fill_from_file(const char* path, ShareInfo& share) {
  const Stream stream = open_stream(path, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  const unsigned length = FSH_GetStrLen(nullptr, share.name, stream.get());
  std::string value(length + std::size_t{1}, '\0');
  if (length == 0 || FSH_GetStrNoCase(nullptr, share.name, value.data(), static_cast<int>(length),
                                      stream.get()) != FSH_OK) {
    return FSH_MALFORMED;
  }
  const auto fields = parse_registry_value(value.c_str());
  if (!fields) {
    return FSH_MALFORMED;
  }
  fill_share(*fields, share);
  return FSH_OK;
}

Result fill_share_info(ShareInfo& share) {
  make_removable_registry();
  const auto fill = [&](const char* path) {
    return guarded(FSH_NO_MEMORY, [&] { return fill_from_file(path, share); });
  };
  const Result first = fill(kRegistryFiles[0]);
  if (first == FSH_OK) {
    return FSH_OK;
  }
  const Result second = fill(kRegistryFiles[1]);
  // No memory for a value of the first file is forgotten when the second can be read.
  if (second == FSH_CANNOT_OPEN && first != FSH_CANNOT_OPEN) {
    return FSH_MALFORMED;
  }
  return second;
}

// The value of a share that exists, as read_registered_value.
Result read_value_of_share(const char* name, std::optional<std::string>& value) {
  if (ShareExist(name) == 0) {
    return FSH_SHARE_UNKNOWN;
  }
  return read_registered_value(name, value);
}

Result fill_share_group(ShareGroupInfo& record) {
  std::optional<std::string> value;
  STEP(read_value_of_share(record.name, value));
  if (!value) {
    return FSH_SHARE_UNREGISTERED;
  }
  ShareInfo share{};
  const Result result = value->empty() ? FSH_OK : ShareStringPar(value->c_str(), &share);
  record.groups = share.groups;
  return result;
}

Result fill_share_with_group(ShareInfo& share) {
  std::optional<std::string> value;
  STEP(read_value_of_share(share.name, value));
  return missing(value ? value->c_str() : nullptr) ? FSH_OK
                                                   : ShareStringPar(value->c_str(), &share);
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ShareExist(const char* name) {
  if (missing(name)) {
    return 0;
  }
  return guarded(0, [&] { return is_registered(name) ? 1 : 0; });
}

unsigned GetShareInfo(ShareInfo* record) {
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  return guarded(FSH_NO_MEMORY, [&] { return fill_share_info(*record); });
}

unsigned GetShareGroup(ShareGroupInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  record->groups = nullptr;
  return guarded(FSH_NO_MEMORY, [&] { return fill_share_group(*record); });
}

unsigned GetShareWithGroup(ShareInfo* record) {
  if (record == nullptr || missing(record->name)) {
    return FSH_ARGUMENT;
  }
  end_text(record->name);
  return guarded(FSH_NO_MEMORY, [&] { return fill_share_with_group(*record); });
}
