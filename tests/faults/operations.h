/* Every exported function, ready to be called with good arguments or with bad ones. */
#ifndef TESTS_FAULTS_OPERATIONS_H
#define TESTS_FAULTS_OPERATIONS_H

#include <cstddef>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/device_test.h"

/* A text that is not there is a null pointer. */
using Text = std::optional<std::string>;
using Texts = std::vector<Text>;

/* Everything that a call needs, made before it: the call itself takes no memory and opens nothing
 * but what the library does. */
class Arguments {
 public:
  Arguments(const Texts& texts, Strings list);
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;
  ~Arguments();

  /* The text, or null, in a block of its size; for the callee to change in place, too. */
  char* operator[](size_t number) { return texts_.at(number); }

  const char* const* list() const { return pointers_.data(); }
  int count() const { return static_cast<int>(pointers_.size()); }

  /* A file of the first text, at its start. */
  FILE* stream() const { return stream_; }

 private:
  std::vector<char*> texts_;
  Strings list_;
  std::vector<const char*> pointers_;
  FILE* stream_;
};

struct Operation {
  std::string name;
  Texts texts;
  std::function<unsigned(Arguments&)> call;
  std::function<void()> prepare = [] {};
  Strings list = {};
  bool counts = false; /* any result is good: it is a number or a length */
};

const std::vector<Operation>& operations();

#endif
