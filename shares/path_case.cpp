// The spelling of paths: callers give folders in any letter case, the volumes tell cases apart.
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "conf/c_list.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "platform/samba/samba.h"

namespace filesharing {
namespace {

constexpr int kNoneChanged = -1;

// The name of the first entry, in the order of the directory, that differs in letter case at most.
std::optional<std::string> stored_name(const std::string& directory, const std::string& name) {
  const Folder entries = open_folder(directory);
  if (!entries) {
    return std::nullopt;
  }
  while (const dirent* entry = readdir(entries.get())) {
    const std::string_view found = entry->d_name;
    if (found != "." && found != ".." && found.size() == name.size() &&
        strequal(entry->d_name, name.c_str()) != 0) {
      return std::string(found);
    }
  }
  return std::nullopt;
}

const char* next_slash(const char* text) {
  return strchr_m(text, '/');
}

// The component behind a slash.
std::string_view component(const char* slash) {
  const char* const start = slash + 1;
  const char* const end = next_slash(start);
  return end == nullptr ? std::string_view(start)
                        : std::string_view(start, static_cast<std::size_t>(end - start));
}

const char* last_of_run(const char* slash) {
  while (slash[1] == '/') {
    ++slash;
  }
  return slash;
}

// Rewrites path: `head` and, behind it, what is walked of the path from `position` on, component by
// component as long as there are entries for them. What stands between `position` and the first
// slash is lost, since only absolute paths have a spelling on disk.
int rewrite_path(char* path, const char* position, std::string head) {
  const char* slash = next_slash(position);
  if (slash == nullptr || *position == '\n' || *position == '\r') {
    return kNoneChanged;
  }
  bool changed = false;
  while (slash != nullptr) {
    slash = last_of_run(slash);
    head += '/';
    const std::string given(component(slash));
    const std::optional<std::string> stored = stored_name(head, given);
    if (!stored) {
      head += slash + 1;
      break;
    }
    head += *stored;
    changed = changed || *stored != given;
    slash = next_slash(slash + 1);
  }
  // Never longer than it was: runs of slashes only shrink, and names keep their length.
  std::memcpy(path, head.c_str(), head.size() + 1);
  return changed ? 0 : kNoneChanged;
}

int rewrite_behind(std::string_view prefix, char* path) {
  if (std::string_view(path).find(prefix) == std::string_view::npos) {
    return kNoneChanged;
  }
  return rewrite_path(path, path + prefix.size(), std::string(prefix));
}

// A path as dirname(1) and basename(1) take it apart.
struct Split {
  std::string directory;  // with its slash; empty for a path without one
  std::string name;
};

Split split_path(std::string_view path) {
  const std::string_view kept = path.substr(0, path.find_last_not_of('/') + 1);
  const std::size_t slash = kept.rfind('/');
  if (slash == std::string_view::npos) {
    return {.directory = kept.empty() ? "/" : "", .name = std::string(kept)};
  }
  const std::string_view directory = kept.substr(0, kept.find_last_not_of('/', slash) + 1);
  return {.directory = std::string(directory) + '/', .name = std::string(kept.substr(slash + 1))};
}

int rewrite_last_component(char* path) {
  const Split split = split_path(path);
  const std::optional<std::string> stored =
      stored_name(split.directory.empty() ? "." : split.directory, split.name);
  const std::string rewritten = split.directory + stored.value_or(split.name);
  std::memcpy(path, rewritten.c_str(), rewritten.size() + 1);
  return stored.value_or(split.name) == split.name ? 0 : 1;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

char* getname(const char* slash) {
  if (slash == nullptr || *slash == '\0') {
    return nullptr;
  }
  return guarded<char*>(nullptr, [&] { return duplicate(component(slash)); });
}

int case_dir(const char* directory, const char* name, char** stored) {
  if (directory == nullptr || name == nullptr || stored == nullptr) {
    return 0;
  }
  return guarded(0, [&] {
    const std::optional<std::string> found = stored_name(directory, name);
    if (found) {
      *stored = duplicate(*found);
    }
    return found ? 1 : 0;
  });
}

int trans_dir(char* path) {
  if (path == nullptr) {
    return kNoneChanged;
  }
  return guarded(kNoneChanged, [&] { return rewrite_path(path, path, {}); });
}

int trans_dir_with_prefix(const char* prefix, char* path) {
  if (missing(path)) {
    return kNoneChanged;
  }
  return guarded(kNoneChanged,
                 [&] { return rewrite_behind(prefix == nullptr ? "" : prefix, path); });
}

int simple_trans_dir(char* path) {
  if (missing(path)) {
    return -1;
  }
  return guarded(-1, [&] { return rewrite_last_component(path); });
}

int trans_one_item(const char* directory, char* name) {
  if (missing(directory) || missing(name)) {
    return -1;
  }
  return guarded(-1, [&] {
    const std::optional<std::string> stored = stored_name(directory, name);
    if (!stored) {
      return -1;
    }
    std::memcpy(name, stored->c_str(), stored->size());
    return 0;
  });
}
