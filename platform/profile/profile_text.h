// The text of a profile file: lines, sections and keys. Pure functions, no files; the form is
// described in profile.h.
#ifndef PLATFORM_PROFILE_PROFILE_TEXT_H
#define PLATFORM_PROFILE_PROFILE_TEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace profile {

// A section by name; nothing stands for the lines before the first header.
using Section = std::optional<std::string_view>;

// Whether a line, with or without its line end, begins with "[" and so ends the section before it.
bool ends_section(std::string_view line);

// Whether a line is the header of the section of that name.
bool is_header_of(std::string_view line, std::string_view name);

// The text after the "=" of a key's line, blanks included, the line end left out.
std::optional<std::string_view> value_of(std::string_view line, std::string_view key);

// Whether what is written could be found again: see PRO_SetStr.
bool can_be_written(Section section, std::string_view key, std::string_view value);

// The text with a key set.
std::string with_key(std::string_view text, Section section, std::string_view key,
                     std::string_view value);

// The text without the sections of that name.
std::string without_section(std::string_view text, std::string_view name);

}  // namespace profile

#endif
