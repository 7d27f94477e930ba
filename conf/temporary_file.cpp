#include "conf/temporary_file.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <tuple>

#include "conf/paths.h"
#include "conf/volumes.h"
#include "filesharing/conf.h"

namespace filesharing {

namespace {

// Kept: the doubled slash for the volumes 1 and 2 and the single one for volume 5.
const char* template_on(int volume) {
  switch (volume) {
    case 1:
      return "/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX";
    case 2:
      return "/harddisk/volume_2/conf//tmp/tmpfile.XXXXXX";
    case 5:
      return "/harddisk/volume_5/conf/tmp/tmpfile.XXXXXX";
    default:
      return paths::kTemporaryTemplate;
  }
}

}  // namespace

bool TemporaryFile::make(TemporaryPlace place) {
  remove();
  std::string path = place == TemporaryPlace::kTmp ? paths::kTemporaryTemplate
                                                   : template_on(configuration_volume());
  const int descriptor = mkstemp(path.data());
  if (descriptor < 0) {
    return false;
  }
  std::ignore = close(descriptor);  // nothing was written
  path_ = path;
  return true;
}

void TemporaryFile::remove() {
  if (!path_.empty()) {
    std::ignore = unlink(path_.c_str());  // one that stays does no harm
    path_.clear();
  }
}

}  // namespace filesharing

using namespace filesharing;

void GetTmpFileName(char* buf) {
  if (buf != nullptr) {
    const char* pattern = template_on(configuration_volume());
    std::memcpy(buf, pattern, std::strlen(pattern) + 1);
  }
}
