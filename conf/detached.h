// Work that goes on after the page has its answer: a process of its own, in a session of its own.
#ifndef FILESHARING_CONF_DETACHED_H
#define FILESHARING_CONF_DETACHED_H

#include <functional>

#include "conf/result.h"

namespace filesharing {

enum class ChildSignal { kUntouched, kDefault, kIgnored };

struct Detached {
  bool closes_descriptors = true;  // 0 to 63, so that the web server sees the page's output end
  bool enters_root = true;         // changes to "/"
  ChildSignal child_signal = ChildSignal::kDefault;
  unsigned sleep_seconds = 0;  // before the work
  bool caller_resets_child_signal = false;
};

// Forks twice and returns FSH_OK to the caller at once, without waiting for either child. When the
// second fork fails, the first child does the work; when the first one fails, nobody does. The
// detached process ends with the work, with status 0.
Result run_detached(const Detached& options, const std::function<void()>& work);

// The same, but a detached process whose work fails does not end: it returns the code out of this
// call, as if it were the caller.
Result run_detached_until_failure(const Detached& options, const std::function<Result()>& work);

}  // namespace filesharing

#endif
