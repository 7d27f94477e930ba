#include "conf/transaction.h"

#include <tuple>

#include "conf/account_backup.h"
#include "filesharing/conf.h"

namespace filesharing {

Result Transaction::begin() {
  if (options_.locks && Lock(options_.mask) != 0) {
    return options_.busy;
  }
  const Result result = guarded(options_.out_of_memory, [&] { return prepare(); });
  if (result != FSH_OK && options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

// A server without a configuration volume has nothing to back up, and is changed all the same.
Result Transaction::prepare() {
  const bool room = has_room({.mask = options_.mask | options_.unguarded,
                              .copied = options_.backs_up ? options_.mask : 0,
                              .appended = options_.appends,
                              .added = options_.adds,
                              .repeats = options_.repeats,
                              .registers = options_.registers});
  if (room && options_.backs_up) {
    const Copies copies = take_copies(options_.mask);
    restorable_ = copies.whole;
    return copies.room ? FSH_OK : options_.no_room;
  }
  return room ? FSH_OK : options_.no_room;
}

Result Transaction::end(Result result) {
  if (result != FSH_OK && on_failure == OnFailure::kNothing) {
    return result;
  }
  if (result == FSH_OK && options_.mirrors) {
    UpdateDiskUserGroupInfo();
  }
  if (result != FSH_OK && on_failure == OnFailure::kRestore) {
    std::ignore = guarded(FSH_NO_MEMORY, [&] {
      restore_copies(restorable_);
      return FSH_OK;  // the change's own code is its result
    });
  }
  if (options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

}  // namespace filesharing
