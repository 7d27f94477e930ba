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

// Runs change(name) for each in order; the first failure undoes the whole batch.
template <class Change>
Result change_access(const Batch& batch, Result busy, Change change) {
  return transact({.mask = kShareFiles, .busy = busy, .mirrors = false}, [&](Transaction&) {
    Result result = FSH_OK;
    for (int i = 0; i < batch.count && result == FSH_OK; ++i) {
      result = change(batch.names[i]);
    }
    return result;
  });
}

}  // namespace filesharing

#endif
