// How volumes are mounted.
#include <string_view>

#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "filesharing/media.h"

namespace filesharing {
namespace {

constexpr std::size_t kPieceLength = 127;

bool holds(std::string_view line, std::string_view text) {
  return line.find(text) != std::string_view::npos;
}

bool is_read_only_ntfs(std::string_view text) {
  const Stream mounts = open_stream(paths::kMounts, "r");
  if (!mounts) {
    return false;
  }
  for (PieceReader line(mounts.get(), kPieceLength); line.next();) {
    if (holds(line.text(), text) && holds(line.text(), "ntfs") && holds(line.text(), "ro,")) {
      return true;
    }
  }
  return false;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int IsFolderReadonly(const char* text) {
  return guarded(0, [&] { return text != nullptr && is_read_only_ntfs(text) ? 1 : 0; });
}
