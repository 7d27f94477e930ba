// How fileshare says that something did not work.
#ifndef FILESHARE_FAILURE_H
#define FILESHARE_FAILURE_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace fileshare {

enum ExitStatus { kDone = 0, kFailed = 1, kUsageError = 2 };

// What a code of the library means for one operation.
struct Reason {
  unsigned code;
  const char* words;
};

// The exit status for the result of an operation. For a failure it prints one line, such as
//   fileshare: can not add user "bob": a user of this name exists (code 26)
// The words come from reasons, where the caller lists what a code means for this operation, else
// from the meanings that all operations share (20 to 24).
int report(std::string_view operation, unsigned code, std::initializer_list<Reason> reasons = {});

// Prints "fileshare: " and the message, for what the library was not asked; gives the status back.
int refuse(std::string_view message, ExitStatus status);

// A name as error lines show it: in double quotes, nothing in it that could drive a terminal.
std::string in_quotes(std::string_view name);

}  // namespace fileshare

#endif
