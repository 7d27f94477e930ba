// The share registry: the system registry, which is two files, the list of its own that each volume
// has, and the value behind a share's name: "suffixed:volume:comment:path:groups".
#ifndef FILESHARING_SHARES_SHARE_REGISTRY_H
#define FILESHARING_SHARES_SHARE_REGISTRY_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "filesharing/types.h"

namespace filesharing {

// The files of the system registry, in the order in which they are read.
inline constexpr std::array<const char*, 2> kRegistryFiles{paths::kShares, paths::kRemovableShares};

// What a share takes in any of the files at most, besides its groups.
inline constexpr std::uint64_t kMostShareBytes = 512;

// The file that a share is written to.
const char* registry_file(std::string_view share);

// Whoever reads the registry finds both files: makes the one for removable shares, empty, when
// there is none.
void make_removable_registry();

// Iterates the lines of a registry file that have a "=".
class RegistryReader {
 public:
  explicit RegistryReader(const char* path);

  bool opened() const { return stream_ != nullptr; }
  bool next();

  std::string_view line() const { return lines_.text(); }
  std::string_view name() const { return name_; }
  std::string_view value() const { return value_; }  // with its line end

 private:
  Stream stream_;
  LineReader lines_;
  std::string_view name_;
  std::string_view value_;
};

// The value registered under exactly this name, without its line end, from the first file where it
// is not empty. An empty text when the second file has the name without a value; nothing when it
// does not have the name. FSH_OK; FSH_CANNOT_OPEN: neither file could be opened.
Result read_registered_value(const char* name, std::optional<std::string>& value);

// Writes the line of the share into the system registry. FSH_FAILED: it could not be written.
Result register_share(const ShareInfo& share, std::string_view access_list);

// Writes the line of the share into the list of its volume; removable shares have none there.
void list_on_volume(const ShareInfo& share, std::string_view access_list,
                    const std::string& name_on_volume);

// The fields that are written of a record, cut to their ends; without groups and next.
ShareInfo written_fields(const ShareInfo& record);

struct RegistryValue {
  std::int32_t suffixed;
  std::int32_t volume;
  std::string_view comment;
  std::string_view path;
  std::string_view access_list;  // empty without one
};

// Nothing for a value with less than four fields: every field but the last is ended by a ":" that
// is not the last character of its line.
std::optional<RegistryValue> parse_registry_value(std::string_view value);

// Fills the first four fields of the record.
void fill_share(const RegistryValue& value, ShareInfo& share);

// A value under which a share is registered: the path always ends in "/". `access_list` comes with
// the ":" before it.
std::string registry_value(const ShareInfo& share, std::string_view access_list);

// The value as it stands in the volume's own list.
std::string volume_value(std::string_view registry_value);

// The name of the share as the volume knows it.
std::string volume_share_name(const ShareInfo& share);

// What GetShareInfo tells, for many shares after one reading of the registry.
class RegistryIndex {
 public:
  RegistryIndex();

  // Fills what GetShareInfo fills for the share of the record's name, which holds no "=". False
  // when that would fail.
  bool fill(ShareInfo& share) const;

 private:
  // By name in small letters. Of lines of one name the first counts, and none behind a section
  // header.
  using Values = std::unordered_map<std::string, std::string>;

  static Values read(const char* path);

  std::array<Values, kRegistryFiles.size()> files_;
};

}  // namespace filesharing

#endif
