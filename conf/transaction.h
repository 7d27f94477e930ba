// A change of several account or share files that happens as a whole or not at all: locks, a look
// whether there is room to finish it, copies of the files, the change, and then either the mirror
// of the account files or the restore.
#ifndef FILESHARING_CONF_TRANSACTION_H
#define FILESHARING_CONF_TRANSACTION_H

#include <cstdint>
#include <type_traits>

#include "conf/guarded_files.h"
#include "conf/result.h"

namespace filesharing {

// What a failure of the change does. A change can set another one than the usual for some steps.
enum class OnFailure {
  kRestore,     // restore the files from their backups, then unlock
  kUnlockOnly,  // nothing has been changed yet
  kNothing,     // neither restore nor unlock
};

struct TransactionOptions {
  int mask;              // of guarded_files.h: locked, backed up and restored
  Result busy = FSH_OK;  // the code when a lock is taken; nothing is unlocked then
  Result no_room;        // the code when a disk has no room for the change; nothing is changed then
  std::uint64_t adds = 0;  // bytes at most, to each file
  int unguarded = 0;       // files that it changes besides
  int appends = 0;         // files of mask that grow in place; the others are written anew
  bool repeats = false;    // writes each file once for each share or group
  bool registers = false;  // sets lines of the share registry and of AppleVolumes.conf, too
  bool locks = true;
  bool backs_up = true;
  bool mirrors = true;  // to the second disk, when the change succeeded
  Result out_of_memory = FSH_NO_MEMORY;
};

class Transaction {
 public:
  explicit Transaction(const TransactionOptions& options)
      : options_(options), restorable_(options.mask) {}

  // Takes the locks and the backup: FSH_OK; busy; or no_room or out_of_memory, without locks.
  Result begin();

  // Ends the transaction: mirror and unlock after FSH_OK, else what on_failure says. Returns
  // result.
  Result end(Result result);

  OnFailure on_failure = OnFailure::kRestore;

 private:
  Result prepare();

  TransactionOptions options_;
  int restorable_;  // files of the mask whose copies are whole
};

// Runs change(), or change(transaction), which returns FSH_OK or a code, as one transaction.
template <class Change>
Result transact(const TransactionOptions& options, Change&& change) {
  Transaction transaction(options);
  STEP(transaction.begin());
  return transaction.end(guarded<Result>(options.out_of_memory, [&]() -> Result {
    if constexpr (std::is_invocable_v<Change, Transaction&>) {
      return change(transaction);
    } else {
      return change();
    }
  }));
}

}  // namespace filesharing

#endif
