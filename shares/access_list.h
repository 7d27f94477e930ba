// The access list of a share: groups with their rights codes. In the registry "name:rights" joined
// by
// ",", for smbd and afpd the names alone: @"administrators",@"staff"
#ifndef FILESHARING_SHARES_ACCESS_LIST_H
#define FILESHARING_SHARES_ACCESS_LIST_H

#include <string>
#include <string_view>

#include "conf/c_list.h"
#include "conf/names.h"
#include "conf/text.h"
#include "filesharing/shares.h"

namespace filesharing {

// A list that is freed with its owner.
class AccessList : public CList<ShareGroup> {
 public:
  explicit AccessList(ShareGroup* groups = nullptr) : CList(groups, FreeShGrpList) {}
};

// Throws std::bad_alloc. Null for an empty text, for one that begins with a line end, and when some
// item has no ":".
ShareGroup* parse_access_list(std::string_view text);

// The list as it stands behind the path in a line of the registry, each group but those named
// `without`: ":" before the first and "," before the others. Empty for no groups.
std::string access_list_field(const ShareGroup* groups, std::string_view without = {});

// The group of exactly this name, or null.
const ShareGroup* find_group(const ShareGroup* groups, std::string_view name);

// `quote` stands before and behind each name; it may be empty.
inline std::string access_name(std::string_view group, std::string_view quote = "\"") {
  return std::string("@").append(quote).append(group).append(quote);
}

// "administrators", once and first, and then the other groups of the list that `admits` takes, in
// the order of the list.
template <class Admits>
std::string access_names(const ShareGroup* groups, Admits admits, std::string_view quote = "\"") {
  std::string text = access_name(kAdministrators, quote);
  for (const ShareGroup& group : Nodes(groups)) {
    const std::string_view name = field_text(group.name);
    if (name != kAdministrators && admits(group)) {
      text.append(",").append(access_name(name, quote));
    }
  }
  return text;
}

// The groups of a share that is written whole: those that may enter it, and those that may write.
inline std::string share_users(const ShareInfo& share) {
  return access_names(share.groups, [](const ShareGroup& group) { return group.name[0] != '\0'; });
}
inline std::string share_writers(const ShareInfo& share, bool read_only) {
  return access_names(share.groups, [&](const ShareGroup& group) {
    return !read_only && group.rights == FSH_READ_WRITE;
  });
}

// The groups that a share keeps when one is taken off its list.
struct RemainingGroups {
  const ShareGroup* groups;
  std::string_view removed;

  bool has(const ShareGroup& group) const { return group.name != removed; }
};

}  // namespace filesharing

#endif
