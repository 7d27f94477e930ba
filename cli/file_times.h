// When files were written, and where the library keeps its temporary ones.
#ifndef FILESHARE_FILE_TIMES_H
#define FILESHARE_FILE_TIMES_H

#include <ctime>
#include <optional>
#include <string>

namespace fileshare {

using FileTime = std::optional<timespec>;  // nothing when the file is not there

FileTime written(const std::string& path);

// Some disks keep whole seconds only: times that may be the same are not before each other.
bool is_before(const timespec& one, const timespec& other);

// In the conf folder of the configuration volume, or in /tmp without one.
std::string temporary_pattern();

}  // namespace fileshare

#endif
