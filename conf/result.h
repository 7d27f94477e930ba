// Results of the steps of an operation.
#ifndef FILESHARING_CONF_RESULT_H
#define FILESHARING_CONF_RESULT_H

#include <new>

#include "filesharing/results.h"

namespace filesharing {

// FSH_OK or one of the codes of results.h.
using Result = unsigned;

// Runs steps in the order given; the first that fails ends the run with its code.
template <class... Steps>
Result in_order(Steps&&... steps) {
  Result result = FSH_OK;
  static_cast<void>((((result = steps()) == FSH_OK) && ...));
  return result;
}

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
