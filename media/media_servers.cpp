#include "media/media_servers.h"

#include <unistd.h>

#include <cstring>
#include <tuple>

#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/media.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"

namespace filesharing {

namespace {

struct FolderReference {
  std::string share;
  std::string folder;  // as in PublishedFolder
};

// What StripShareAndFolder returns.
enum Resolved { kThere = 0, kNoShare = -1, kNoFolder = -2 };

// Nothing for a text without a slash. What stands before the first one does not count.
std::optional<FolderReference> parse_reference(std::string_view text) {
  const std::string clean = with_single_slashes(text);
  const auto start = split_at(clean, '/');
  if (!start.found) {
    return std::nullopt;
  }
  const auto share = split_at(start.tail, '/');
  return FolderReference{.share = std::string(share.head),
                         .folder = share.tail.empty() ? "" : '/' + std::string(share.tail)};
}

// FSH_OK, or the code of GetShareInfo. A name that is too long for a share is unknown, whatever it
// would be if it were cut to its field.
Result find_share(const std::string& name, ShareInfo& share) {
  share = {};
  if (name.size() >= sizeof share.name) {
    return FSH_MALFORMED;
  }
  copy_field(share.name, name);
  return GetShareInfo(&share);
}

Resolved resolve(std::string_view text, FolderReference& found) {
  const auto reference = parse_reference(text);
  ShareInfo share{};
  if (!reference || find_share(reference->share, share) != FSH_OK) {
    return kNoShare;
  }
  // Doubled slashes do no harm here: the registry's paths end in one.
  if (access((path_of(share) + reference->folder).c_str(), F_OK) != 0) {
    return kNoFolder;
  }
  found = *reference;
  return kThere;
}

// The caller's buffer holds any text that comes from its reference.
void copy_out(const std::string& text, char* buffer) {
  if (buffer != nullptr) {
    std::memcpy(buffer, text.c_str(), text.size() + 1);
  }
}

// A failure is not reported: the server is stopped already, and the page's answer is about its
// folder.
void switch_off(const char* key) {
  std::ignore = PRO_SetStr(kMediaSection, key, "no", paths::kSettings);
}

bool is_read_only_ntfs(std::string_view text) {
  constexpr std::size_t kPieceLength = 127;
  const Stream mounts = open_stream(paths::kMounts, "r");
  for (PieceReader line(mounts.get(), kPieceLength); line.next();) {
    const auto holds = [&](std::string_view part) { return line.text().find(part) != part.npos; };
    if (holds(text) && holds("ntfs") && holds("ro,")) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string server_name(const SettingsFile& file, std::string_view chosen, const char* suffix) {
  if (!chosen.empty()) {
    return std::string(chosen);
  }
  return file.section("network").text("disk_server_name", 64).value_or("") + suffix;
}

std::string path_of(const ShareInfo& share) {
  return paths::volume_data(share.volume) + share.path;
}

std::optional<PublishedFolder> find_folder(std::string_view reference) {
  FolderReference found;
  ShareInfo share{};
  if (resolve(reference, found) != kThere || find_share(found.share, share) != FSH_OK) {
    return std::nullopt;
  }
  return PublishedFolder{.share = share, .folder = found.folder};
}

std::optional<PublishedFolder> find_folder(const UPnPAVSettings& settings, int slot) {
  const bool used = settings.folder_used[slot] != 0;
  return used ? find_folder(field_text(settings.folder_path[slot])) : std::nullopt;
}

Result find_folder_or_switch_off(const char* reference, const char* switch_key,
                                 PublishedFolder& found) {
  FolderReference parts;
  const Resolved resolved = resolve(reference, parts);
  const Result result =
      resolved == kThere ? find_share(parts.share, found.share) : Result{FSH_FAILED};
  if (resolved != kNoShare && result != FSH_OK) {
    switch_off(switch_key);
  }
  found.folder = parts.folder;
  return result;
}

}  // namespace filesharing

using namespace filesharing;

int StripShareAndFolder(const char* reference, char* share, char* folder, int check_only) {
  if (reference == nullptr) {
    return -1;
  }
  return guarded(-1, [&]() -> int {
    FolderReference found;
    const Resolved resolved = resolve(reference, found);
    if (resolved == kThere && check_only == 0) {
      copy_out(found.share, share);
      copy_out(found.folder, folder);
    }
    return resolved;
  });
}

int IsFolderReadonly(const char* text) {
  return guarded(0, [&] { return text != nullptr && is_read_only_ntfs(text) ? 1 : 0; });
}
