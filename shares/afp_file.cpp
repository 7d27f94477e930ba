#include "shares/afp_file.h"

#include <optional>
#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/shares.h"
#include "shares/share_folder.h"

namespace filesharing {
namespace {

// Two readers of the name on a line. Kept: a line is written whole by the name between "[ and ]",
// quotes included, but its lists are replaced by the one between the first brackets, quotes or not.

std::optional<std::string_view> quoted_name(std::string_view line) {
  const std::size_t open = line.find("\"[");
  if (open == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view name = line.substr(open + 2);
  const std::size_t close = name.find("]\"");
  return close == std::string_view::npos ? std::nullopt : std::optional(name.substr(0, close));
}

// The part of the share's line that stays: all to the quote that closes the name.
std::optional<std::string_view> head_with_name(std::string_view line, std::string_view share) {
  line = without_line_end(line);
  const std::size_t open = line.find('[');
  const std::size_t close = line.find(']');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
      line.substr(open + 1, close - open - 1) != share) {
    return std::nullopt;
  }
  return line.substr(0, close + 2);
}

Result rewrite_folders(const EditText& edit) {
  return guarded(FSH_AFP_SHARES_NOT_WRITTEN, [&] {
    return rewrite_text(paths::kAppleVolumes, {},
                        {.runs = 2, .settle_seconds = 2, .failure = FSH_AFP_SHARES_NOT_WRITTEN},
                        edit);
  });
}

}  // namespace

std::string afp_line(const ShareInfo& share, bool read_only) {
  // Kept: two blanks before rwlist.
  return format("\"%s\" \"[%s]\"  rwlist:%s allow:%s\n", served_folder(share).c_str(),
                std::string(field_text(share.name)).c_str(),
                share_writers(share, read_only).c_str(), share_users(share).c_str());
}

std::string with_afp_line(std::string_view text, std::string_view name, std::string_view line) {
  std::string result;
  bool found = false;
  while (!text.empty()) {
    const std::string_view old = take_line(text);
    const bool is_share = quoted_name(old) == name;
    result.append(is_share ? line : old);
    found = found || is_share;
  }
  if (!found) {
    end_last_line(result);
    result.append(line);
  }
  return result;
}

std::string with_afp_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining) {
  // Kept: names without quotes, and the lists the other way round from a line that is written
  // whole: every group writes by rwlist, and who may only read is not let in by allow.
  const std::string writers = access_names(
      remaining.groups, [&](const ShareGroup& group) { return remaining.has(group); }, "");
  const std::string users = access_names(
      remaining.groups,
      [&](const ShareGroup& group) {
        return remaining.has(group) && group.name[0] != '\0' && group.rights != FSH_READ_ONLY;
      },
      "");
  const std::string lists = " rwlist:" + writers + " allow:" + users + '\n';
  std::string result;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    if (const auto head = head_with_name(line, share)) {
      result.append(*head).append(lists);
    } else {
      result += line;
    }
  }
  return result;
}

std::string without_afp_lines(std::string_view text, std::string_view key) {
  std::string result;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    if (!line.starts_with(key)) {
      result.append(line);
    }
  }
  return result;
}

std::string removable_afp_line(const RemovableMount& mount) {
  const std::string users = access_name(kAdministrators) + ',' + access_name(kEveryone);
  const std::string writers = mount.writable ? "rwlist:" + users + ' ' : std::string();
  return format("\"%s/\" \"[%s]\" %sallow:%s\n", std::string(mount.folder).c_str(),
                std::string(mount.name).c_str(), writers.c_str(), users.c_str());
}

}  // namespace filesharing

using namespace filesharing;

unsigned SetAFPShare(const ShareInfo* record, unsigned read_only) {
  default_child_signal();
  if (record == nullptr) {
    return FSH_ARGUMENT;
  }
  return rewrite_folders([&](std::string_view text) {
    return with_afp_line(text, field_text(record->name), afp_line(*record, read_only != 0));
  });
}

unsigned WriteAFPShare(const ShareInfo* record) {
  return SetAFPShare(record, 0);
}

void write_afp(const ShareInfo* record, FILE* file, unsigned read_only) {
  if (record == nullptr || file == nullptr) {
    return;
  }
  // Without memory nothing is written: there is no result to tell it.
  std::ignore = guarded(FSH_NO_MEMORY, [&] {
    write_text(file, afp_line(*record, read_only != 0));
    return FSH_OK;
  });
}

unsigned DelShareFromAFP(const char* key) {
  if (missing(key)) {
    return FSH_ARGUMENT;
  }
  // The action of SIGCHLD stays the caller's, unlike in SetAFPShare: while it is ignored, the copy
  // counts as failed.
  return rewrite_folders([&](std::string_view text) { return without_afp_lines(text, key); });
}
