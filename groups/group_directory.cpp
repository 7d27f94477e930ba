#include "groups/group_directory.h"

#include <cstdlib>
#include <memory>

#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"
#include "groups/group_lines.h"

namespace filesharing {

// When the shares can not be listed, no group has any.
SharesByGroup::SharesByGroup() : shares_(GetAllShare, FreeShareList) {
  for (const ShareInfo& share : shares_) {
    for (const ShareGroup& group : Nodes(share.groups)) {
      std::vector<Entry>& entries = entries_[std::string(field_text(group.name))];
      // The first entry of the group in an access list counts.
      if (entries.empty() || entries.back().share != &share) {
        entries.push_back({.share = &share, .rights = group.rights});
      }
    }
  }
}

GroupShareInfo* SharesByGroup::record_of(const char* group) const {
  const auto found = entries_.find(group);
  if (found == entries_.end()) {
    return nullptr;
  }
  std::unique_ptr<GroupShareInfo, void (*)(void*)> record(allocate<GroupShareInfo>(), std::free);
  copy_field(record->name, group);
  CStrings shares(FSH_MOST_GROUP_SHARES);
  for (const Entry& entry : found->second) {
    if (!shares.full()) {
      record->rights[shares.count()] = entry.rights;
      shares.add(entry.share->name);
    }
  }
  shares.hand_over(record->count, record->shares);
  return record.release();
}

GroupDirectory::GroupDirectory(std::FILE* lists) {
  for (LineReader line(lists); line.next();) {
    const Halves list = split_at(line.text(), '=');
    if (list.found) {
      lists_.try_emplace(std::string(list.head), list.tail);
    }
  }
  if (const Stream stream = open_stream(paths::kGroup, "r")) {
    for (LineReader line(stream.get()); line.next();) {
      const GroupLine group = parse_group_line(line.text());
      if (group.gid) {
        gids_.try_emplace(std::string(group.name), *group.gid);
      }
    }
  }
}

std::int32_t GroupDirectory::gid(const char* group) const {
  const auto found = gids_.find(group);
  return missing(group) || found == gids_.end() ? FSH_GROUP_UNKNOWN : found->second;
}

Result GroupDirectory::fill_users(GroupUserInfo& group) const {
  if (missing(group.name)) {
    return FSH_ARGUMENT;
  }
  const auto found = lists_.find(group.name);
  return fill_members(found == lists_.end() ? "" : found->second, group);
}

GroupShareInfo* GroupDirectory::shares(const char* group) {
  if (missing(group)) {
    return nullptr;
  }
  return guarded(static_cast<GroupShareInfo*>(nullptr), [&] {
    if (!shares_) {
      shares_.emplace();
    }
    return shares_->record_of(group);
  });
}

}  // namespace filesharing
