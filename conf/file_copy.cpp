#include "conf/file_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <tuple>
#include <utility>

#include "conf/processes.h"
#include "conf/room.h"
#include "conf/stream.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

CopyStatus run(const FileCopy& copy) {
  CopyStatus result{};
  for (int run = 0; run < copy.runs; ++run) {
    errno = 0;
    result.status =
        copy.through == Through::kSystem
            ? run_command("/bin/cp -f %s %s 2>/dev/null", copy.from.c_str(), copy.to.c_str())
            : SYSTEM("/bin/cp -f %s %s 2>/dev/null", copy.from.c_str(), copy.to.c_str());
    result.cause = errno;
  }
  return result;
}

// In place: what the file held has made room for it.
void write_over(const std::string& path, std::string_view content) {
  if (Stream stream = open_stream(path, "w")) {
    write_text(stream.get(), content);
    std::ignore = close_flushed(std::move(stream));  // there is nothing else to try
  }
}

}  // namespace

CopyStatus copy_file(const FileCopy& copy) {
  if (!has_room_for_copy(copy.from, copy.to)) {
    return {.status = -1, .cause = ENOSPC};
  }
  const OldContent old(copy.to);
  CopyStatus result = run(copy);
  if (result.status == 0) {
    return result;
  }
  const std::optional<std::string> wanted = read_file(copy.from);
  const std::optional<std::string> left = read_file(copy.to);
  if (left == wanted || old.is(left)) {
    return result;
  }
  if (copy.mends_onward && wanted) {
    write_over(copy.to, *wanted);
  } else {
    old.put_back();
  }
  result.cause = EIO;
  return result;
}

std::optional<std::string> read_file(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  const Stream stream = open_stream(path, "r");
  if (!stream) {
    return std::nullopt;
  }
  std::string content = read_rest(stream.get());
  return std::ferror(stream.get()) == 0 ? std::optional(std::move(content)) : std::nullopt;
}

OldContent::OldContent(std::string path)
    : path_(std::move(path)),
      existed_(access(path_.c_str(), F_OK) == 0),
      content_(read_file(path_)) {}

void OldContent::put_back() const {
  if (content_) {
    write_over(path_, *content_);
  } else if (!existed_) {
    std::ignore = unlink(path_.c_str());
  }
}

}  // namespace filesharing
