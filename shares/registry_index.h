// What GetShareInfo tells, for many shares after one reading of the registry.
#ifndef FILESHARING_SHARES_REGISTRY_INDEX_H
#define FILESHARING_SHARES_REGISTRY_INDEX_H

#include <array>
#include <string>
#include <unordered_map>

#include "filesharing/types.h"
#include "shares/share_registry.h"

namespace filesharing {

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
