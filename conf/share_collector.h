// The shares of a group on their way into a GroupShareInfo record.
#ifndef FILESHARING_CONF_SHARE_COLLECTOR_H
#define FILESHARING_CONF_SHARE_COLLECTOR_H

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#include "conf/heap_list.h"
#include "filesharing/types.h"

namespace filesharing {

// At most FSH_MOST_GROUP_SHARES. Those that are not handed over are freed, and the record has none.
class ShareCollector {
 public:
  explicit ShareCollector(GroupShareInfo& record) : record_(record) {}
  ShareCollector(const ShareCollector&) = delete;
  ShareCollector& operator=(const ShareCollector&) = delete;
  ~ShareCollector() {
    for (int i = 0; i < count_; ++i) {
      std::free(names_[i]);
    }
    std::free(names_);
  }

  bool full() const { return count_ == FSH_MOST_GROUP_SHARES; }

  // Throws std::bad_alloc.
  void add(const char* share, std::int32_t rights) {
    auto** grown = static_cast<char**>(
        std::realloc(names_, (static_cast<std::size_t>(count_) + 1) * sizeof(char*)));
    if (grown == nullptr) {
      throw std::bad_alloc();
    }
    names_ = grown;
    names_[count_] = duplicate(share);
    record_.rights[count_] = rights;
    ++count_;
  }

  void hand_over() {
    record_.count = std::exchange(count_, 0);
    record_.shares = std::exchange(names_, nullptr);
  }

 private:
  GroupShareInfo& record_;
  std::int32_t count_ = 0;
  char** names_ = nullptr;
};

}  // namespace filesharing

#endif
