#include "shares/smb_section.h"

#include <optional>
#include <tuple>

#include "conf/text.h"
#include "shares/access_text.h"
#include "shares/share_folder.h"

namespace filesharing {

namespace {

// The name in the header of a section. A line that begins like a header but does not close its
// bracket is an ordinary line.
std::optional<std::string_view> section_name(std::string_view line) {
  const Halves bracket = split_at(line.substr(0, line.find('\n')), ']');
  if (!line.starts_with('[') || !bracket.found) {
    return std::nullopt;
  }
  return bracket.head.substr(1);
}

void skip_body(std::string_view& rest) {
  while (!rest.empty() && !rest.starts_with('[')) {
    std::ignore = take_line(rest);
  }
}

}  // namespace

std::string smb_section_body(const ShareInfo& share, bool read_only) {
  const std::string users =
      access_names(share.groups, [](const ShareGroup& group) { return group.name[0] != '\0'; });
  const std::string writers = access_names(share.groups, [&](const ShareGroup& group) {
    return !read_only && group.rights == FSH_READ_WRITE;
  });
  return format(
      "valid users=%s\n"
      "comment=%s\n"
      "path=%s\n"
      "read only=yes\n"
      "write list=%s\n",
      users.c_str(), std::string(field_text(share.comment)).c_str(), served_folder(share).c_str(),
      writers.c_str());
}

std::string with_smb_section(std::string_view text, std::string_view name, std::string_view body) {
  std::string result;
  bool found = false;
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    result.append(line);
    if (section_name(line) != name) {
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

}  // namespace filesharing
