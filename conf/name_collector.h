// Names on their way into a GroupUserInfo record.
#ifndef FILESHARING_CONF_NAME_COLLECTOR_H
#define FILESHARING_CONF_NAME_COLLECTOR_H

#include <cstdlib>
#include <string_view>
#include <utility>

#include "conf/heap_list.h"
#include "filesharing/types.h"

namespace filesharing {

constexpr int kMostNames = 255;

// Names that do not get into a record are freed.
class NameCollector {
 public:
  NameCollector() = default;
  NameCollector(const NameCollector&) = delete;
  NameCollector& operator=(const NameCollector&) = delete;
  ~NameCollector() {
    for (int i = 0; i < names_.count; ++i) {
      std::free(names_.list[i]);
    }
    std::free(names_.list);
  }

  // Makes the array for the names, once. False without memory for it.
  [[nodiscard]] bool has_room() {
    if (names_.list == nullptr) {
      names_.list = static_cast<char**>(std::calloc(kMostNames, sizeof(char*)));
    }
    return names_.list != nullptr;
  }

  bool full() const { return names_.count == kMostNames; }

  // Throws std::bad_alloc.
  void add(std::string_view name, std::size_t spare = 0) {
    if (!has_room()) {
      throw std::bad_alloc();
    }
    names_.list[names_.count] = duplicate(name, spare);
    ++names_.count;
  }

  void hand_over(GroupUserInfo& record) {
    record.count = std::exchange(names_.count, 0);
    record.list = std::exchange(names_.list, nullptr);
  }

 private:
  GroupUserInfo names_{};
};

}  // namespace filesharing

#endif
