#include "shares/smb_file.h"

#include <optional>
#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "platform/profile/profile.h"
#include "shares/share_folder.h"

namespace filesharing {
namespace {

// Two readers of a header, which differ in what they take for one. Kept: a section "[a] ; b" is
// written whole as that of the share "a", but its lists are not replaced.

// To the first "]"; what follows it does not count.
std::optional<std::string_view> name_to_bracket(std::string_view line) {
  const Halves bracket = split_at(line.substr(0, line.find('\n')), ']');
  if (!line.starts_with('[') || !bracket.found) {
    return std::nullopt;
  }
  return bracket.head.substr(1);
}

// A line whose last character is the "]".
std::optional<std::string_view> name_of_whole_line(std::string_view line) {
  line = without_line_end(line);
  if (!line.starts_with('[') || !line.ends_with(']')) {
    return std::nullopt;
  }
  return line.substr(1, line.size() - 2);
}

void skip_body(std::string_view& rest) {
  while (!rest.empty() && !rest.starts_with('[')) {
    std::ignore = take_line(rest);
  }
}

Result set_section(const ShareInfo& share, bool read_only) {
  const std::string body = smb_section_body(share, read_only);
  return rewrite_text(
      paths::kSmbConf, {}, {.runs = 2, .settle_seconds = 2, .failure = FSH_SMB_SHARES_NOT_WRITTEN},
      [&](std::string_view text) { return with_smb_section(text, field_text(share.name), body); });
}

}  // namespace

std::string smb_section_body(const ShareInfo& share, bool read_only) {
  return format(
      "valid users=%s\n"
      "comment=%s\n"
      "path=%s\n"
      "read only=yes\n"
      "write list=%s\n",
      share_users(share).c_str(), std::string(field_text(share.comment)).c_str(),
      served_folder(share).c_str(), share_writers(share, read_only).c_str());
}

std::string with_smb_section(std::string_view text, std::string_view name, std::string_view body) {
  std::string result;
  bool found = false;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    result.append(line);
    if (name_to_bracket(line) != name) {
      continue;
    }
    found = true;
    end_last_line(result);
    result.append(body);
    skip_body(text);
    // Kept: the line that ends a replaced section is not looked at, so that a second section of the
    // same name straight behind it stays as it is.
    result.append(take_line(text));
  }
  if (!found) {
    end_last_line(result);
    result.append("[").append(name).append("]\n").append(body);
  }
  return result;
}

std::string with_smb_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining) {
  const std::string users = "valid users=" +
                            access_names(remaining.groups,
                                         [&](const ShareGroup& group) {
                                           return remaining.has(group) && group.name[0] != '\0';
                                         }) +
                            '\n';
  // Any rights but those to read alone count as writing here.
  const std::string writers =
      "write list=" +
      access_names(remaining.groups,
                   [&](const ShareGroup& group) {
                     return remaining.has(group) && group.rights != FSH_READ_ONLY;
                   }) +
      '\n';
  std::string result;
  bool in_section = false;
  bool wrote_writers = false;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    if (const auto name = name_of_whole_line(line)) {
      in_section = *name == share;
      wrote_writers = false;
    }
    if (in_section && line.starts_with("valid users")) {
      result += users;
    } else if (in_section && !wrote_writers && line.starts_with("write list")) {
      result += writers;
      wrote_writers = true;
    } else {
      result += line;
    }
  }
  return result;
}

std::string removable_smb_section(const RemovableMount& mount) {
  const std::string users = access_name(kAdministrators) + ',' + access_name(kEveryone);
  // Kept: blanks round some of the "=", unlike in the sections of the data volumes.
  return format(
      "[%s]\n"
      "valid users=%s\n"
      "comment = For everyone\n"
      "path=%s\n"
      "read only = yes\n"
      "write list= %s\n",
      std::string(mount.name).c_str(), users.c_str(), std::string(mount.folder).c_str(),
      mount.writable ? users.c_str() : "");
}

}  // namespace filesharing

using namespace filesharing;

unsigned SetSmbShare(const ShareInfo* record, unsigned read_only) {
  default_child_signal();
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_SMB_SHARES_NOT_WRITTEN, [&] { return set_section(*record, read_only != 0); });
}

unsigned WriteSmbShare(const ShareInfo* record) {
  return SetSmbShare(record, 0);
}

void write_share(const ShareInfo* record, FILE* file, unsigned read_only) {
  if (record == nullptr || file == nullptr) {
    return;
  }
  // Without memory nothing is written: there is no result to tell it.
  std::ignore = guarded(FSH_NO_MEMORY, [&] {
    write_text(file, smb_section_body(*record, read_only != 0));
    return FSH_OK;
  });
}

unsigned DelShareFromSMB(const char* name) {
  if (missing(name)) {
    return FSH_ARGUMENT;
  }
  return static_cast<unsigned>(
      PRO_DelSect(name, is_removable_share(name) ? paths::kRemovableSmbConf : paths::kSmbConf));
}
