// A user's entries in the lists of /etc/usrgrp.info: lines of a key, "=" and users with their
// quotas, "name:quota" joined by ",". The line with the key "everyone" lists every user.
#ifndef FILESHARING_USERS_USER_LISTS_H
#define FILESHARING_USERS_USER_LISTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "conf/file_rewrite.h"

namespace filesharing {

// What takes the place of an entry.
struct ListEntry {
  std::string_view name;
  std::uint32_t quota;
};

// The line with the entry behind the others; nothing when one of those is malformed.
std::optional<std::string> line_with_entry(std::string_view line, const ListEntry& added);

// The line with every entry of that name replaced, or gone without a replacement; nothing when an
// entry is malformed. A blank line stays, one without "=" becomes empty.
std::optional<std::string> line_with_replaced(std::string_view line, std::string_view name,
                                              const std::optional<ListEntry>& replacement);

// Rewrite the file. FSH_OK, FSH_NO_TEMPORARY, FSH_CANNOT_OPEN, FSH_MALFORMED, or the failure of the
// copy back.
Result add_to_everyone(const ListEntry& user, const CopyBack& copy_back);
Result replace_in_lists(std::string_view name, const std::optional<ListEntry>& replacement,
                        const CopyBack& copy_back);

}  // namespace filesharing

#endif
