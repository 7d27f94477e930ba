#include "shares/afp_line.h"

#include <optional>

#include "conf/text.h"
#include "shares/access_text.h"
#include "shares/share_folder.h"

namespace filesharing {

namespace {

// The name between "[ and ]" on a line; a comment may hold these too.
std::optional<std::string_view> share_name(std::string_view line) {
  const std::size_t open = line.find("\"[");
  if (open == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view name = line.substr(open + 2);
  const std::size_t close = name.find("]\"");
  return close == std::string_view::npos ? std::nullopt : std::optional(name.substr(0, close));
}

}  // namespace

std::string afp_line(const ShareInfo& share, bool read_only) {
  const std::string writers = access_names(share.groups, [&](const ShareGroup& group) {
    return !read_only && group.rights == FSH_READ_WRITE;
  });
  const std::string users =
      access_names(share.groups, [](const ShareGroup& group) { return group.name[0] != '\0'; });
  // Kept: two blanks before rwlist.
  return format("\"%s\" \"[%s]\"  rwlist:%s allow:%s\n", served_folder(share).c_str(),
                std::string(field_text(share.name)).c_str(), writers.c_str(), users.c_str());
}

std::string with_afp_line(std::string_view text, std::string_view name, std::string_view line) {
  std::string result;
  bool found = false;
  while (!text.empty()) {
    const std::string_view old = take_line(text);
    const bool is_share = share_name(old) == name;
    result.append(is_share ? line : old);
    found = found || is_share;
  }
  if (!found) {
    end_last_line(result);
    result.append(line);
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

}  // namespace filesharing
