// The groups of a share as smbd and afpd read them: @"administrators",@"staff"
#ifndef FILESHARING_SHARES_ACCESS_TEXT_H
#define FILESHARING_SHARES_ACCESS_TEXT_H

#include <functional>
#include <string>
#include <string_view>

#include "conf/names.h"
#include "filesharing/types.h"

namespace filesharing {

// `quote` stands before and behind each name; it may be empty.
std::string access_name(std::string_view group, std::string_view quote = "\"");

// "administrators", once and first, and then the other groups of the list that `admits` takes, in
// the order of the list.
std::string access_names(const ShareGroup* groups,
                         const std::function<bool(const ShareGroup& group)>& admits,
                         std::string_view quote = "\"");

}  // namespace filesharing

#endif
