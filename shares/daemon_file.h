// The rewrite of a file in which a daemon finds the shares.
#ifndef FILESHARING_SHARES_DAEMON_FILE_H
#define FILESHARING_SHARES_DAEMON_FILE_H

#include <functional>
#include <string>
#include <string_view>

#include "conf/result.h"

namespace filesharing {

// What becomes of the content of a file.
using EditText = std::function<std::string(std::string_view text)>;

// Puts what edit makes of the file in its place and gives the daemon two seconds to see it. A file
// that can not be read or copied back stays as it was, with the code not_written.
Result rewrite_daemon_file(const char* path, Result not_written, const EditText& edit);

}  // namespace filesharing

#endif
