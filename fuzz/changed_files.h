// The device's files that an input of whole operations can bring along.
#ifndef FUZZ_CHANGED_FILES_H
#define FUZZ_CHANGED_FILES_H

#include <string_view>

namespace fuzz {

// One of them, by any number.
const char* changed_file(int number);

// Files as a device has them, but for those that the text brings: a line "@PATH" begins one, a line
// "-PATH" takes one away. Returns what stands before the first such line.
std::string_view set_files(std::string_view text);

}  // namespace fuzz

#endif
