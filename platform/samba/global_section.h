// The section "global" of smb.conf(5) as Samba reads it: all that stands below headers of that
// name, and before the first header. Pure functions, no files.
#ifndef PLATFORM_SAMBA_GLOBAL_SECTION_H
#define PLATFORM_SAMBA_GLOBAL_SECTION_H

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace samba {

struct GlobalKey {
  std::string_view name;
  std::string_view synonym;          // Samba's other name for it, empty without one
  std::optional<std::string> value;  // nothing: the file's, for a key that others set
  std::string_view when_missing;     // Samba's own value, where there is neither
};

// The text with these keys in force. Each has one line, "name=value", in a section "global" at the
// head of the file and before what that includes: sections of an included file go on behind it. A
// key without a value keeps its line or, if none is written as PRO_SetStr writes it, the value that
// is in force; where it is missing it gets a line only before an include, since PRO_SetStr would
// put one at the section's end. All other lines stay byte for byte.
std::string with_global_keys(std::string_view text, std::span<const GlobalKey> keys);

}  // namespace samba

#endif
