// Debug lines for whoever looks into AFP on a device; nothing in the library writes one.
#include <cstdarg>
#include <tuple>
#include <utility>

#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/services.h"

using namespace filesharing;

namespace {

// Kept: every line carries the place of the first version of this function, which tools look for.
constexpr char kFile[] = "afp";
constexpr char kFunction[] = "debug_afp";
constexpr int kLine = 23;

void append_line(const std::string& message) {
  Stream log = open_stream(paths::kDebugLog, "a+");
  if (log) {
    write_text(log.get(), format("%s:%s():[%d]:", kFile, kFunction, kLine) + message + '\n');
    std::ignore = close_written(std::move(log));  // a debug line that is lost is lost
  }
}

}  // namespace

void debug_afp(const char* format, ...) {
  if (format == nullptr) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  guarded(0, [&] {
    append_line(format_list(format, arguments));
    return 0;
  });
  va_end(arguments);
}
