// The groups in /etc/group and the groups in /etc/usrgrp.info, each file by itself.
#include <array>
#include <string>
#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/shell.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

constexpr std::int32_t kLastGivenGid = 2252;

constexpr CopyBack copy_back_once(Result failure) {
  return {.sync_after = Sync::kAlways, .failure = failure};
}

// Which of the gids for groups made here are in use.
class CreatedGids {
 public:
  void mark(const GroupLine& group) {
    if (group.gid && is_created_gid(*group.gid)) {
      used_[static_cast<std::size_t>(*group.gid - kFirstCreatedGid)] = true;
    }
  }

  // Nothing when no gid is left to give, though the last ones of the table may be unused.
  std::optional<std::int32_t> first_free() const {
    const auto free = std::find(used_.begin(), used_.end(), false);
    const auto gid = kFirstCreatedGid + static_cast<std::int32_t>(free - used_.begin());
    return gid <= kLastGivenGid ? std::optional(gid) : std::nullopt;
  }

 private:
  std::array<bool, kCreatedGids> used_{};
};

// What a rewrite of the system group file without its blank lines has seen.
struct SeenGroups {
  CreatedGids gids;
  bool has_name = false;
  bool last_line_ends = true;
};

// Copies every line but the blank ones and those of the group.
SeenGroups copy_other_groups(std::string_view name, FileRewrite& rewrite) {
  SeenGroups seen;
  for (LineReader line(rewrite.source()); line.next();) {
    const GroupLine group = parse_group_line(line.text());
    if (is_blank_line(line.text())) {
      continue;
    }
    if (group.name == name) {
      seen.has_name = true;
      continue;
    }
    seen.gids.mark(group);
    rewrite.write(line.text());
    seen.last_line_ends = line.ends_line();
  }
  return seen;
}

Result add_system_group(std::string_view name, FileRewrite& rewrite) {
  const SeenGroups seen = copy_other_groups(name, rewrite);
  if (seen.has_name) {
    return FSH_GROUP_EXISTS;
  }
  const auto gid = seen.gids.first_free();
  if (!gid) {
    return FSH_NO_FREE_GID;
  }
  rewrite.write(seen.last_line_ends ? "" : "\n");
  rewrite.write(std::string(name) + ":x:" + std::to_string(*gid) + ":\n");
  return rewrite.commit(copy_back_once(FSH_GROUP_NOT_ADDED));
}

Result delete_system_group(std::string_view name, FileRewrite& rewrite) {
  std::ignore = copy_other_groups(name, rewrite);  // a group that is not there is gone
  return rewrite.commit(copy_back_once(FSH_GROUP_NOT_DELETED));
}

Result rename_system_group(const std::string& old_name, const std::string& new_name) {
  return rewrite_lines(paths::kGroup, {}, copy_back_once(FSH_GROUP_NOT_RENAMED),
                       [&](std::string_view line, FileRewrite& rewrite) {
                         const GroupLine group = parse_group_line(line);
                         if (group.name == new_name) {
                           return FSH_GROUP_EXISTS;
                         }
                         rewrite.write(group.name == old_name ? new_name : group.name);
                         rewrite.write(group.rest);
                         return FSH_OK;
                       });
}

Result delete_created_groups(const Names& kept) {
  return rewrite_lines(paths::kGroup, {}, copy_back_once(FSH_GROUP_NOT_DELETED),
                       [&](std::string_view line, FileRewrite& rewrite) {
                         const GroupLine group = parse_group_line(line);
                         const bool created = group.gid && is_created_gid(*group.gid);
                         if (!created || holds(kept, group.name)) {
                           rewrite.write(line);
                         }
                         return FSH_OK;
                       });
}

Result delete_group_keys(const char* path) {
  return rewrite_lines(path, {}, copy_back_once(FSH_GROUP_NOT_DELETED),
                       [](std::string_view line, FileRewrite& rewrite) {
                         // Kept: the names passed in protect no line; only one of "=" alone, which
                         // names no key, stays, and so no group is left in the file.
                         if (line.find_first_not_of('=') == std::string_view::npos) {
                           rewrite.write(line);
                         }
                         return FSH_OK;
                       });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned SysActGroup(const char* name, unsigned mode) {
  if (missing(name) || mode > FSH_DELETE_GROUP) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] {
    FileRewrite rewrite(paths::kGroup);
    const Result opened = rewrite.open();
    if (opened != FSH_OK) {
      return opened;
    }
    return mode == FSH_ADD_GROUP ? add_system_group(name, rewrite)
                                 : delete_system_group(name, rewrite);
  });
}

unsigned SysRenGroupName(const char* old_name, const char* new_name) {
  if (missing(old_name) || missing(new_name)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return rename_system_group(old_name, new_name); });
}

unsigned SysDelAllGroup(const char* const* kept, int count) {
  if (!is_list(kept, count)) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_NO_MEMORY, [&] { return delete_created_groups({kept, kept + count}); });
}

unsigned DelAllGRP(const char* const* names, int, const char* path) {
  return guarded(FSH_NO_MEMORY, [&] {
    // Kept: a stray command with nothing in it; whatever it returns, the work goes on.
    std::ignore = run_command("%s", "");
    if (names == nullptr || missing(path)) {
      return FSH_ARGUMENT;
    }
    return delete_group_keys(path);
  });
}
