#include "conf/transaction.h"

#include "filesharing/conf.h"

namespace filesharing {

Result Transaction::begin() {
  if (options_.locks && Lock(options_.mask) != 0) {
    return options_.busy;
  }
  if (options_.backs_up) {
    // A server without a configuration volume has nothing to back up, and is changed all the same.
    static_cast<void>(BackupConFiles(options_.mask));
  }
  return FSH_OK;
}

Result Transaction::end(Result result) {
  if (result != FSH_OK && on_failure == OnFailure::kNothing) {
    return result;
  }
  if (result == FSH_OK && options_.mirrors) {
    UpdateDiskUserGroupInfo();
  }
  if (result != FSH_OK && on_failure == OnFailure::kRestore) {
    static_cast<void>(RestoreConFiles(options_.mask));  // the change's own code is the one to tell
  }
  if (options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

}  // namespace filesharing
