#include "shares/access_list.h"

#include "conf/result.h"
#include "conf/text.h"

namespace filesharing {

ShareGroup* parse_access_list(std::string_view text) {
  if (is_blank_line(text)) {
    return nullptr;
  }
  AccessList groups;
  for (Halves items{.found = true, .head = {}, .tail = text}; items.found;) {
    items = split_at(items.tail, ',');
    const Halves item = split_at(items.head, ':');
    if (!item.found) {
      return nullptr;
    }
    ShareGroup& group = groups.append();
    copy_field(group.name, item.head);
    group.rights = to_int(item.tail);
  }
  return groups.release();
}

std::string access_list_field(const ShareGroup* groups, std::string_view without) {
  std::string field;
  for (const ShareGroup& group : Nodes(groups)) {
    // A group without a name is a group like any other here.
    const std::string_view name = field_text(group.name);
    if (without.empty() || name != without) {
      field.append(1, field.empty() ? ':' : ',').append(name);
      field += format(":%d", group.rights);
    }
  }
  return field;
}

const ShareGroup* find_group(const ShareGroup* groups, std::string_view name) {
  for (const ShareGroup& group : Nodes(groups)) {
    if (field_text(group.name) == name) {
      return &group;
    }
  }
  return nullptr;
}

}  // namespace filesharing

using namespace filesharing;

ShareGroup* GetShGroup(const char* access_list) {
  if (access_list == nullptr) {
    return nullptr;
  }
  return guarded<ShareGroup*>(nullptr, [&] { return parse_access_list(access_list); });
}

void FreeShGrpList(ShareGroup* head) {
  free_list(head);
}
