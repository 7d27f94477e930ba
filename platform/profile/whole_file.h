// Reading a file whole, and replacing one as a whole or not at all.
#ifndef PLATFORM_PROFILE_WHOLE_FILE_H
#define PLATFORM_PROFILE_WHOLE_FILE_H

#include <optional>
#include <string>
#include <string_view>

namespace profile {

// The content of a regular file. Nothing, with errno as it was left (ENOENT for a missing file),
// when it can not be read.
std::optional<std::string> read_whole_file(const char* path);

// Replaces the file that `path` leads to, through symbolic links, by one with this content; makes
// it when it is missing. Whenever the process or the machine stops, the path leads to the old
// content or to the new one. False with the file untouched and no temporary file left.
bool replace_whole_file(const char* path, std::string_view content);

}  // namespace profile

#endif
