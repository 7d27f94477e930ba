#include "media/folder_reference.h"

#include <unistd.h>

#include <cstring>
#include <optional>
#include <string_view>

#include "conf/text.h"
#include "filesharing/media.h"
#include "filesharing/shares.h"

namespace filesharing {

namespace {

std::string with_single_slashes(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character != '/' || !result.ends_with('/')) {
      result += character;
    }
  }
  return result;
}

// Nothing for a text without a slash. What stands before the first one does not count.
std::optional<FolderReference> parse_reference(std::string_view text) {
  const std::string clean = with_single_slashes(text);
  const Halves start = split_at(clean, '/');
  if (!start.found) {
    return std::nullopt;
  }
  const Halves share = split_at(start.tail, '/');
  return FolderReference{.share = std::string(share.head),
                         .folder = share.tail.empty() ? "" : '/' + std::string(share.tail)};
}

// Doubled slashes are no matter here: the registry's paths end in one.
bool is_there(const ShareInfo& share, const FolderReference& reference) {
  const std::string path =
      format("/harddisk/volume_%d/data%s%s", share.volume, share.path, reference.folder.c_str());
  return access(path.c_str(), F_OK) == 0;
}

// The caller's buffer holds any text that comes from its reference.
void copy_out(const std::string& text, char* buffer) {
  if (buffer != nullptr) {
    std::memcpy(buffer, text.c_str(), text.size() + 1);
  }
}

}  // namespace

Result find_share(const std::string& name, ShareInfo& share) {
  share = {};
  if (name.size() >= sizeof share.name) {
    return FSH_MALFORMED;
  }
  copy_field(share.name, name);
  return GetShareInfo(&share);
}

ResolvedFolder resolve_folder(const std::string& reference) {
  const auto parsed = parse_reference(reference);
  ShareInfo share{};
  if (!parsed || find_share(parsed->share, share) != FSH_OK) {
    return {.state = ResolvedFolder::State::kNoShare, .reference = {}};
  }
  if (!is_there(share, *parsed)) {
    return {.state = ResolvedFolder::State::kNoFolder, .reference = {}};
  }
  return {.state = ResolvedFolder::State::kThere, .reference = *parsed};
}

bool find_folder(const std::string& path, FolderReference& reference, ShareInfo& share) {
  const ResolvedFolder resolved = resolve_folder(path);
  reference = resolved.reference;
  return resolved.there() && find_share(reference.share, share) == FSH_OK;
}

}  // namespace filesharing

using namespace filesharing;

int StripShareAndFolder(const char* reference, char* share, char* folder, int check_only) {
  if (reference == nullptr) {
    return -1;
  }
  return guarded(-1, [&] {
    const ResolvedFolder resolved = resolve_folder(reference);
    if (!resolved.there()) {
      return resolved.state == ResolvedFolder::State::kNoFolder ? -2 : -1;
    }
    if (check_only == 0) {
      copy_out(resolved.reference.share, share);
      copy_out(resolved.reference.folder, folder);
    }
    return 0;
  });
}
