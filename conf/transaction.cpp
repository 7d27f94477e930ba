#include "conf/transaction.h"

#include "filesharing/conf.h"

namespace filesharing {

Result Transaction::begin() {
  if (options_.locks && Lock(options_.mask) != 0) {
    return options_.busy;
  }
  if (options_.backs_up) {
    BackupConFiles(options_.mask);
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
    RestoreConFiles(options_.mask);
  }
  if (options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

}  // namespace filesharing
