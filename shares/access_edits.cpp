#include "shares/access_edits.h"

#include <optional>

#include "conf/text.h"
#include "shares/access_text.h"

namespace filesharing {
namespace {

constexpr std::string_view kUsersKey = "valid users";
constexpr std::string_view kWritersKey = "write list";

// Any rights but those to read alone count as writing here.
std::string names(const RemainingGroups& remaining, bool named, bool writers,
                  std::string_view quote) {
  return access_names(
      remaining.groups,
      [&](const ShareGroup& group) {
        return group.name != remaining.removed && (!named || group.name[0] != '\0') &&
               (!writers || group.rights != FSH_READ_ONLY);
      },
      quote);
}

// The name in a header: a line whose last character is the "]".
std::optional<std::string_view> section_name(std::string_view line) {
  line = without_line_end(line);
  if (!line.starts_with('[') || !line.ends_with(']')) {
    return std::nullopt;
  }
  return line.substr(1, line.size() - 2);
}

// The part of an AFP line that stays when it is the share's line: all to the quote that closes the
// name.
std::optional<std::string_view> afp_line_head(std::string_view line, std::string_view share) {
  line = without_line_end(line);
  const std::size_t open = line.find('[');
  const std::size_t close = line.find(']');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open ||
      line.substr(open + 1, close - open - 1) != share) {
    return std::nullopt;
  }
  return line.substr(0, close + 2);
}

}  // namespace

std::string with_smb_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining) {
  const std::string users = "valid users=" + names(remaining, true, false, "\"") + '\n';
  const std::string writers = "write list=" + names(remaining, false, true, "\"") + '\n';
  std::string result;
  bool in_section = false;
  bool wrote_writers = false;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    if (const auto name = section_name(line)) {
      in_section = *name == share;
      wrote_writers = false;
    }
    if (in_section && line.starts_with(kUsersKey)) {
      result += users;
    } else if (in_section && !wrote_writers && line.starts_with(kWritersKey)) {
      result += writers;
      wrote_writers = true;
    } else {
      result += line;
    }
  }
  return result;
}

std::string with_afp_access(std::string_view text, std::string_view share,
                            const RemainingGroups& remaining) {
  // Kept: names without quotes, and the lists the other way round from a line that is written
  // whole: every group writes by rwlist, and who may only read is not let in by allow.
  const std::string lists = " rwlist:" + names(remaining, false, false, "") +
                            " allow:" + names(remaining, true, true, "") + '\n';
  std::string result;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    if (const auto head = afp_line_head(line, share)) {
      result.append(*head).append(lists);
    } else {
      result += line;
    }
  }
  return result;
}

}  // namespace filesharing
