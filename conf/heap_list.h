// Records and strings on the C heap, for callers who free them with the library's free functions.
#ifndef FILESHARING_CONF_HEAP_LIST_H
#define FILESHARING_CONF_HEAP_LIST_H

#include <cstdlib>
#include <new>
#include <string_view>
#include <utility>

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
    Node* next = head->next;
    release(*head);
    std::free(head);
    head = next;
  }
}

template <class Node>
void free_list(Node* head) {
  free_list(head, [](Node&) {});
}

// A list under construction, in the order of the appends. Until release it frees what it holds.
template <class Node>
class HeapList {
 public:
  using Free = void (*)(Node*);

  explicit HeapList(Free free) : free_(free) {}

  // Takes over a finished list, to free it.
  HeapList(Free free, Node* head) : free_(free), head_(head) {}
  HeapList(const HeapList&) = delete;
  HeapList& operator=(const HeapList&) = delete;
  ~HeapList() { clear(); }

  // Appends a zeroed node; throws std::bad_alloc.
  Node& append() {
    *end_ = allocate<Node>();
    Node& node = **end_;
    end_ = &node.next;
    return node;
  }

  const Node* head() const { return head_; }

  void clear() { free_(release()); }

  // Hands the list to the caller.
  Node* release() {
    end_ = &head_;
    return std::exchange(head_, nullptr);
  }

 private:
  Free free_;
  Node* head_ = nullptr;
  Node** end_ = &head_;
};

}  // namespace filesharing

#endif
