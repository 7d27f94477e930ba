// Lines of the share registry and access lists.
#include <cstring>

#include "filesharing/shares.h"
#include "fuzz/fuzz_input.h"
#include "shares/access_list.h"
#include "shares/share_registry.h"

namespace {

std::size_t count(const ShareGroup* groups) {
  std::size_t number = 0;
  for (; groups != nullptr; groups = groups->next) {
    fuzz::require(std::memchr(groups->name, '\0', sizeof groups->name) != nullptr);
    ++number;
  }
  return number;
}

// A list that was read, written and read again is the same list.
void check_list(const ShareGroup* groups) {
  const std::string field = filesharing::access_list_field(groups);
  fuzz::require(field.empty() == (groups == nullptr));
  if (groups == nullptr) return;
  ShareGroup* const again = GetShGroup(field.c_str() + 1);
  fuzz::require(count(again) == count(groups));
  fuzz::require(filesharing::access_list_field(again) == field);
  FreeShGrpList(again);
}

void parse_value(const std::string& value) {
  const std::vector<char> exact = fuzz::exact_copy(value);
  ShareInfo share = {};
  if (ShareStringPar(exact.data(), &share) != FSH_OK) {
    fuzz::require(share.groups == nullptr);
    return;
  }
  fuzz::require(std::memchr(share.comment, '\0', sizeof share.comment) != nullptr);
  fuzz::require(std::memchr(share.path, '\0', sizeof share.path) != nullptr);
  check_list(share.groups);
  const std::string written =
      filesharing::registry_value(share, filesharing::access_list_field(share.groups));
  (void)filesharing::volume_value(written);
  (void)filesharing::volume_share_name(share);
  FreeShGrpList(share.groups);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzz::Input(data, size).rest();
  parse_value(text);
  ShareGroup* const groups = GetShGroup(text.c_str());
  check_list(groups);
  FreeShGrpList(groups);
  return 0;
}
