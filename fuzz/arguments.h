// The arguments of a call in an input: what stands between "|" behind the name of the operation.
#ifndef FUZZ_ARGUMENTS_H
#define FUZZ_ARGUMENTS_H

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "conf/text.h"
#include "fuzz/outside.h"

namespace fuzz {

// They are taken one after the other; behind the last one all are empty.
class Arguments {
 public:
  explicit Arguments(std::string_view text) {
    while (!text.empty()) texts_.emplace_back(filesharing::take_until(text, '|'));
  }

  // Null for "(null)".
  const char* text() {
    if (at_ == texts_.size()) return "";
    const std::string& next = texts_[at_++];
    return next == "(null)" ? nullptr : next.c_str();
  }

  int number() {
    const char* const next = text();
    return next == nullptr ? 0 : filesharing::to_int(next);
  }

  // All that are left.
  std::vector<const char*> texts() {
    std::vector<const char*> list;
    while (at_ < texts_.size()) list.push_back(text());
    return list;
  }

  // Fills a field of a record. A text that is too long fills it to the last byte but one.
  template <std::size_t N>
  void field(char (&field)[N]) {
    const char* const next = text();
    filesharing::copy_field(field, next == nullptr ? "" : next);
  }

 private:
  std::vector<std::string> texts_;
  std::size_t at_ = 0;
};

// An operation by its name.
struct Operation {
  const char* name;
  void (*call)(Arguments& arguments);
  Leaves leaves = Leaves::kNothing;
};

const Operation* find_account_operation(std::string_view name);
const Operation* find_share_operation(std::string_view name);
const Operation* find_service_operation(std::string_view name);

template <std::size_t N>
const Operation* find_operation(const Operation (&table)[N], std::string_view name) {
  for (const Operation& operation : table) {
    if (operation.name == name) return &operation;
  }
  return nullptr;
}

// Calls of the commonest forms.
template <auto Function>
void with_nothing(Arguments& /*arguments*/) {
  static_cast<void>(Function());
}

template <auto Function>
void with_text(Arguments& arguments) {
  static_cast<void>(Function(arguments.text()));
}

template <auto Function>
void with_two_texts(Arguments& arguments) {
  const char* const first = arguments.text();
  static_cast<void>(Function(first, arguments.text()));
}

template <auto Function>
void with_number(Arguments& arguments) {
  static_cast<void>(Function(arguments.number()));
}

// A name and a list of names.
template <auto Function>
void with_list(Arguments& arguments) {
  const char* const name = arguments.text();
  const std::vector<const char*> list = arguments.texts();
  static_cast<void>(Function(name, list.data(), static_cast<int>(list.size())));
}

// Reads a list and frees it.
template <auto Read, auto Free, class Item>
void with_head(Arguments& /*arguments*/) {
  Item* head = nullptr;
  if (Read(&head) == 0) Free(head);
}

// Fills a record by its name, and frees what it holds.
template <auto Read, auto Free, class Record>
void with_record(Arguments& arguments) {
  Record record = {};
  arguments.field(record.name);
  if (Read(&record) == 0) Free(&record);
}

}  // namespace fuzz

#endif
