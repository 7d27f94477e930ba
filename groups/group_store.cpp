// The groups in /etc/group and the groups in /etc/usrgrp.info, each file by itself.
#include <algorithm>
#include <array>
#include <string>
#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "groups/group_lines.h"

namespace filesharing {
namespace {

constexpr CopyBack copy_back_once(Result failure) {
  return {.sync_after = Sync::kAlways, .failure = failure};
}

// What a rewrite of /etc/group without its blank lines and those of a group has seen.
struct SeenGroups {
  std::array<bool, kCreatedGids> gids{};  // of groups made here
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
    if (is_created(group)) {
      seen.gids[static_cast<std::size_t>(*group.gid - kFirstCreatedGid)] = true;
    }
    rewrite.write(line.text());
    seen.last_line_ends = line.ends_line();
  }
  return seen;
}

Result append_group(std::string_view name, const SeenGroups& seen, FileRewrite& rewrite) {
  // Gids up to 2254 count as those of groups made here, but the last two are not given.
  constexpr std::int32_t kLastGivenGid = 2252;
  if (seen.has_name) {
    return FSH_GROUP_EXISTS;
  }
  const auto free = std::ranges::find(seen.gids, false);
  const auto gid = kFirstCreatedGid + static_cast<std::int32_t>(free - seen.gids.begin());
  if (gid > kLastGivenGid) {
    return FSH_NO_FREE_GID;
  }
  rewrite.write(seen.last_line_ends ? "" : "\n");
  rewrite.write(std::string(name) + ":x:" + std::to_string(gid) + ":\n");
  return FSH_OK;
}

Result add_system_group(const char* name) {
  FileRewrite rewrite(paths::kGroup);
  STEP(rewrite.open());
  STEP(append_group(name, copy_other_groups(name, rewrite), rewrite));
  return rewrite.commit(copy_back_once(FSH_GROUP_NOT_ADDED));
}

Result delete_system_group(const char* name) {
  FileRewrite rewrite(paths::kGroup);
  STEP(rewrite.open());
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
                         if (!is_created(group) || holds(kept, group.name)) {
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
    return mode == FSH_ADD_GROUP ? add_system_group(name) : delete_system_group(name);
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
