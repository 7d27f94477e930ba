// Work that goes on after the page has its answer: a process of its own, in a session of its own.
#ifndef FILESHARING_CONF_DETACHED_H
#define FILESHARING_CONF_DETACHED_H

#include <functional>
#include <optional>

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

// Work of the detached process. An empty result ends the process with status 0; with a code, that
// process returns it out of run_detached, as if it were the caller.
using DetachedWork = std::function<std::optional<Result>()>;

// Forks twice and returns FSH_OK to the caller at once, without waiting for either child. When the
// second fork fails, the first child does the work; when the first one fails, nobody does.
Result run_detached(const Detached& options, const DetachedWork& work);

}  // namespace filesharing

#endif
