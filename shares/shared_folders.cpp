// Finding the share of a folder.
#include "conf/c_list.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/registry_index.h"

namespace filesharing {
namespace {

constexpr int kFirstVolume = 1;
constexpr int kLastVolume = 5;

enum class Search { kFound, kNotFound, kFailed };

// Looks for the first share, in the order of the registry, whose record suits.
template <class Suits>
Search find_share(ShareInfo& share, Suits suits) {
  const CList<ShareNameItem> names(GetShareNameList, FreeShareNameList);
  if (names.result() != FSH_OK) {
    return Search::kFailed;
  }
  const RegistryIndex registry;
  for (const ShareNameItem& name : names) {
    copy_field(share.name, name.name);
    if (!registry.fill(share)) {
      return Search::kFailed;
    }
    if (suits()) {
      return Search::kFound;
    }
  }
  return Search::kNotFound;
}

int is_folder_shared(std::string path, int volume) {
  if (!path.ends_with('/')) {
    path += '/';
  }
  ShareInfo share{};
  switch (find_share(share, [&] { return share.path == path && share.volume == volume; })) {
    case Search::kFound:
      return 1;
    case Search::kNotFound:
      return 0;
    case Search::kFailed:
      break;
  }
  return -1;
}

bool is_public_path(std::string_view path) {
  return equals_ignoring_case(path, "/public/") || equals_ignoring_case(path, "/public");
}

std::string with_escaped_blanks(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    escaped += c == ' ' ? std::string("%20") : std::string(1, c);
  }
  return escaped;
}

char* public_share(int volume) {
  ShareInfo share{};
  if (find_share(share, [&] { return is_public_path(share.path) && share.volume == volume; }) !=
      Search::kFound) {
    return nullptr;
  }
  return duplicate(with_escaped_blanks(share.name));
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int dir_shared(const char* path, int volume) {
  if (missing(path)) {
    return -1;
  }
  return guarded(-1, [&] { return is_folder_shared(path, volume); });
}

char* GetPublicSh(int volume) {
  if (volume < kFirstVolume || volume > kLastVolume) {
    return nullptr;
  }
  return guarded<char*>(nullptr, [&] { return public_share(volume); });
}
