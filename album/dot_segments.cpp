// Paths without "." and "..", as text: nothing is looked up on disk.
#include <cstring>
#include <string>

#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

constexpr std::size_t kNowhere = std::string::npos;

void remove_dots(std::string& path) {
  while (path.starts_with("./")) {
    path.erase(0, 2);
  }
  for (std::size_t at = path.find("/./"); at != kNowhere; at = path.find("/./", at)) {
    path.erase(at, 2);
  }
}

// Where the component before the slash at `at` begins: behind a slash, or at the start.
std::size_t component_before(const std::string& path, std::size_t at) {
  const std::size_t slash = at == 0 ? kNowhere : path.rfind('/', at - 1);
  return slash == kNowhere ? 0 : slash + 1;
}

void remove_parents(std::string& path) {
  for (;;) {
    if (path.starts_with("../")) {
      path.erase(0, 3);
      continue;
    }
    const std::size_t at = path.find("/../");
    if (at == kNowhere) {
      return;
    }
    const std::size_t begin = component_before(path, at);
    path.erase(begin, at + 4 - begin);
  }
}

void remove_last_parent(std::string& path) {
  while (path.size() >= 4 && path.ends_with("/..")) {
    const std::size_t slash = path.rfind('/', path.size() - 4);
    if (slash == kNowhere) {
      return;
    }
    path.resize(slash);
  }
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int de_dotdot(char* path) {
  if (path == nullptr) {
    return 0;
  }
  return guarded(0, [&] {
    std::string text = with_single_slashes(path);
    remove_dots(text);
    remove_parents(text);
    remove_last_parent(text);
    std::memcpy(path, text.c_str(), text.size() + 1);  // never longer than before
    return 0;
  });
}
