// Changing the access of several groups or shares as a whole.
#ifndef FILESHARING_SHARES_ACCESS_BATCH_H
#define FILESHARING_SHARES_ACCESS_BATCH_H

#include "conf/transaction.h"
#include "shares/share_registry.h"

namespace filesharing {

// The groups or shares of a batch, as the caller gave them.
struct Batch {
  const char* const* names;
  int count;

  bool empty() const { return names == nullptr || count <= 0; }
};

// Runs change(name) for each in order; the first failure undoes the whole batch. A name takes at
// most `adds` bytes in a file.
template <class Change>
Result change_access(const Batch& batch, Result busy, Result no_room, std::uint64_t adds,
                     Change change) {
  const TransactionOptions options{.mask = kShareFiles,
                                   .busy = busy,
                                   .no_room = no_room,
                                   .adds = adds * static_cast<std::uint64_t>(batch.count),
                                   .repeats = batch.count > 1,
                                   .registers = true,
                                   .mirrors = false};
  return transact(options, [&] {
    Result result = FSH_OK;
    for (int i = 0; i < batch.count && result == FSH_OK; ++i) {
      result = change(batch.names[i]);
    }
    return result;
  });
}

}  // namespace filesharing

#endif
