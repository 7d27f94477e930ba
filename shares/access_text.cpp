#include "shares/access_text.h"

#include "conf/c_list.h"
#include "conf/text.h"

namespace filesharing {

std::string access_name(std::string_view group, std::string_view quote) {
  return std::string("@").append(quote).append(group).append(quote);
}

std::string access_names(const ShareGroup* groups,
                         const std::function<bool(const ShareGroup& group)>& admits,
                         std::string_view quote) {
  std::string text = access_name(kAdministrators, quote);
  for (const ShareGroup& group : Nodes(groups)) {
    const std::string_view name = field_text(group.name);
    if (name != kAdministrators && admits(group)) {
      text.append(",").append(access_name(name, quote));
    }
  }
  return text;
}

}  // namespace filesharing
