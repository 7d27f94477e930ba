// A user's entries in the lists of the account files: the members of /etc/group, group(5), and the
// lists of /etc/usrgrp.info, lines of a key, "=" and users with their quotas, "name:quota" joined
// by ",". The line with the key "everyone" lists every user.
#ifndef FILESHARING_USERS_USER_ENTRIES_H
#define FILESHARING_USERS_USER_ENTRIES_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "conf/file_rewrite.h"
#include "conf/member_list.h"
#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// ---- /etc/group ----

// Takes a user out of every line, whose members are what follows its last ":". FSH_OK;
// FSH_CANNOT_OPEN; FSH_NO_TEMPORARY; FSH_MALFORMED: a line without ":"; FSH_MEMBER_NOT_REMOVED.
Result remove_from_groups(std::string_view name);

// Renames a user in every line, whose members are what follows its third ":". FSH_OK, also when
// nobody has the name; FSH_CANNOT_OPEN; FSH_NO_TEMPORARY; FSH_USER_NOT_UPDATED.
Result rename_in_groups(std::string_view old_name, std::string_view new_name);

// ---- /etc/usrgrp.info ----

// What is added, or takes the place of an entry.
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

// The value of the list "everyone"; empty when it is missing or holds blanks alone.
std::string read_everyone(std::FILE* stream);

// Walks the users of "everyone" as MemberReader does; a name that is too long for a user ends the
// walk as malformed, too.
class EveryoneReader {
 public:
  explicit EveryoneReader(std::string_view value) : members_(value) {}

  bool next();
  const Member& user() const { return members_.member(); }
  bool malformed() const { return members_.malformed() || name_too_long_; }

 private:
  MemberReader members_;
  bool name_too_long_ = false;
};

// Fills what the record of a user of "everyone" with this quota holds.
void fill_from_everyone(UserInfo& record, std::string_view quota);

}  // namespace filesharing

#endif
