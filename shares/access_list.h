// The access list of a share: groups with their rights codes, "name:rights" joined by ",".
#ifndef FILESHARING_SHARES_ACCESS_LIST_H
#define FILESHARING_SHARES_ACCESS_LIST_H

#include <string>
#include <string_view>

#include "conf/c_list.h"
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

}  // namespace filesharing

#endif
