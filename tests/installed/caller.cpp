// A caller in C++, built against the installed library.
#include <filesharing/filesharing.h>

#include <iostream>
#include <memory>

int main() {
  ShareNameItem* names = nullptr;
  if (GetShareNameList(&names) != FSH_OK) return 1;
  const std::unique_ptr<ShareNameItem, decltype(&FreeShareNameList)> owner(names,
                                                                           FreeShareNameList);
  for (const auto* item = owner.get(); item != nullptr; item = item->next) {
    std::cout << item->name << '\n';
  }
}
