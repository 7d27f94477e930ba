#include "tests/faults/allocations.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

extern "C" {
/* The C library's own, below malloc and such. */
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);
}

namespace {

struct Count {
  bool counting;
  int nth;
  int calls;
};

/* Shared by all processes of a run. */
Count& count() {
  static Count* const shared = static_cast<Count*>(
      mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  return *shared;
}

/* The blocks that were allocated since the start: a table without a heap of its own. */
constexpr size_t kMostBlocks = 4096;
std::array<const void*, kMostBlocks> blocks;

void remember(const void* block) {
  if (count().counting) *std::find(blocks.begin(), blocks.end() - 1, nullptr) = block;
}

void forget(const void* block) {
  if (count().counting && block != nullptr) std::replace(blocks.begin(), blocks.end(), block, {});
}

bool fails() {
  if (!count().counting || ++count().calls != count().nth) return false;
  errno = ENOMEM;
  return true;
}

void* remembered(void* block) {
  remember(block);
  return block;
}

}  // namespace

void start_counting_allocations(int nth) {
  blocks.fill(nullptr);
  count() = {true, nth, 0};
}

void stop_counting_allocations() {
  count().counting = false;
}

int allocations_counted() {
  return count().calls;
}

int blocks_left() {
  return static_cast<int>(kMostBlocks - std::count(blocks.begin(), blocks.end(), nullptr));
}

#define INSTEAD __attribute__((visibility("default")))

extern "C" {

INSTEAD void* malloc(size_t size) noexcept {
  return fails() ? nullptr : remembered(__libc_malloc(size));
}

INSTEAD void* calloc(size_t number, size_t size) noexcept {
  return fails() ? nullptr : remembered(__libc_calloc(number, size));
}

INSTEAD void* realloc(void* block, size_t size) noexcept {
  if (fails()) return nullptr;
  forget(block);
  return remembered(__libc_realloc(block, size));
}

INSTEAD void free(void* block) noexcept {
  forget(block);
  __libc_free(block);
}
}
