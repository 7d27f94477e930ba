#include "shares/registry_index.h"

#include <cctype>

#include "conf/text.h"
#include "shares/registry_value.h"

namespace filesharing {

namespace {

// Texts that equals_ignoring_case takes for the same have the same key.
std::string key_of(std::string_view name) {
  std::string key(name);
  for (char& character : key) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return key;
}

}  // namespace

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
