// Records, strings and lists on the C heap, as they cross the interface.
#ifndef FILESHARING_CONF_C_LIST_H
#define FILESHARING_CONF_C_LIST_H

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>
#include <utility>

#include "conf/result.h"

namespace filesharing {

// A zeroed record, or room for count of them; throws std::bad_alloc.
template <class Record>
Record* allocate(std::size_t count = 1) {
  void* block = std::calloc(count, sizeof(Record));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return static_cast<Record*>(block);
}

// A terminated copy in a block with so many spare bytes behind it; throws std::bad_alloc.
inline char* duplicate(std::string_view text, std::size_t spare = 0) {
  char* copy = allocate<char>(text.size() + 1 + spare);
  text.copy(copy, text.size());
  return copy;
}

// Frees the nodes of a list; release frees what a node owns besides itself.
template <class Node, class Release>
void free_list(Node* head, Release release) {
  while (head != nullptr) {
    release(*head);
    std::free(std::exchange(head, head->next));
  }
}

template <class Node>
void free_list(Node* head) {
  free_list(head, [](Node&) {});
}

// The nodes of a list, for range-based loops.
template <class Node>
class Nodes {
 public:
  class Iterator {
   public:
    explicit Iterator(Node* node) : node_(node) {}
    Node& operator*() const { return *node_; }
    Iterator& operator++() {
      node_ = node_->next;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    Node* node_;
  };

  explicit Nodes(Node* head) : head_(head) {}
  Iterator begin() const { return Iterator(head_); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  Node* head_;
};

// The owner of a list: one that a function of the interface has made, or one under construction, in
// the order of the appends.
//
//   const CList<ShareInfo> shares(GetAllShare, FreeShareList);
//   STEP(shares.result());
//   for (const ShareInfo& share : shares) ...
template <class Node>
class CList {
 public:
  using Free = void (*)(Node*);
  using Get = unsigned (*)(Node**);

  explicit CList(Free free) : free_(free) {}

  // The list that get makes, to be looked at; empty, with the result, when that fails.
  CList(Get get, Free free) : free_(free), result_(get(&head_)) {
    if (result_ != FSH_OK) {
      head_ = nullptr;
    }
  }

  // Takes over a finished list.
  CList(Node* head, Free free) : free_(free), head_(head) {
    while (*end_ != nullptr) {
      end_ = &(*end_)->next;
    }
  }
  CList(const CList&) = delete;
  CList& operator=(const CList&) = delete;
  ~CList() { clear(); }

  Result result() const { return result_; }
  bool empty() const { return head_ == nullptr; }
  Node* head() const { return head_; }
  auto begin() const { return Nodes<const Node>(head_).begin(); }
  auto end() const { return Nodes<const Node>(head_).end(); }
  unsigned size() const {
    unsigned count = 0;
    for (const Node* node = head_; node != nullptr; node = node->next) {
      ++count;
    }
    return count;
  }

  // Appends a zeroed node; throws std::bad_alloc.
  Node& append() {
    *end_ = allocate<Node>();
    Node& node = **end_;
    end_ = &node.next;
    return node;
  }

  void clear() { free_(release()); }

  // Hands the list to the caller.
  Node* release() {
    end_ = &head_;
    return std::exchange(head_, nullptr);
  }

 private:
  Free free_;
  Node* head_ = nullptr;
  Node** end_ = &head_;  // where the next node is hung up
  Result result_ = FSH_OK;
};

// Strings in an array of at most so many, until they are handed to a record of the caller's; what
// is not handed over is freed.
class CStrings {
 public:
  explicit CStrings(int most) : most_(most) {}
  CStrings(const CStrings&) = delete;
  CStrings& operator=(const CStrings&) = delete;
  ~CStrings() {
    for (int i = 0; i < count_; ++i) {
      std::free(strings_[i]);
    }
    std::free(strings_);
  }

  // Makes the array, once. False without memory for it.
  [[nodiscard]] bool has_room() {
    if (strings_ == nullptr) {
      strings_ = static_cast<char**>(std::calloc(static_cast<std::size_t>(most_), sizeof(char*)));
    }
    return strings_ != nullptr;
  }

  bool full() const { return count_ == most_; }
  int count() const { return count_; }

  // Throws std::bad_alloc.
  void add(std::string_view text, std::size_t spare = 0) {
    if (!has_room()) {
      throw std::bad_alloc();
    }
    strings_[count_] = duplicate(text, spare);
    ++count_;
  }

  void hand_over(std::int32_t& count, char**& strings) {
    count = std::exchange(count_, 0);
    strings = std::exchange(strings_, nullptr);
  }

 private:
  int most_;
  int count_ = 0;
  char** strings_ = nullptr;
};

}  // namespace filesharing

#endif
