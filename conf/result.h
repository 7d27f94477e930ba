// Results of the steps of an operation.
#ifndef FILESHARING_CONF_RESULT_H
#define FILESHARING_CONF_RESULT_H

#include <new>
#include <tuple>

#include "filesharing/results.h"

namespace filesharing {

// FSH_OK or one of the codes of results.h.
using Result = unsigned;

// Runs a step of an operation, which returns FSH_OK or a code; a step that fails ends the operation
// with its code.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage)
#define STEP(...)                                                  \
  do {                                                             \
    if (const ::filesharing::Result failed_step = (__VA_ARGS__)) { \
      return failed_step;                                          \
    }                                                              \
  } while (false)

// The boundary of the interface: memory that runs out inside becomes the operation's code for it.
// Nothing else is ever thrown.
template <class Code, class Body>
Code guarded(Code out_of_memory, Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return out_of_memory;
  }
}

}  // namespace filesharing

#endif
