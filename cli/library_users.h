// The processes that may be at work on the files.
#ifndef FILESHARE_LIBRARY_USERS_H
#define FILESHARE_LIBRARY_USERS_H

#include <string>
#include <vector>

namespace fileshare {

// "PID (NAME)" of each process that has loaded the library, but this one and those that it was
// started from, which wait for it.
std::vector<std::string> other_library_users();

}  // namespace fileshare

#endif
