// Text on its way to a shell, and as Samba compares it.
#include <cstring>

#include "conf/processes.h"
#include "conf/text.h"
#include "fuzz/fuzz_input.h"
#include "platform/samba/samba.h"
#include "platform/utility/utility.h"

namespace {

// No character that the shell sees between double quotes is left bare.
void check_escaped(const std::string& escaped) {
  for (std::size_t at = 0; at < escaped.size(); ++at) {
    if (escaped[at] == '\\') {
      fuzz::require(++at < escaped.size());
    } else {
      fuzz::require(std::strchr("\"$`", escaped[at]) == nullptr || escaped[at] == '\0');
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::vector<char> left = fuzz::exact_copy(input.take_line());
  const std::vector<char> right = fuzz::exact_copy(input.rest());
  check_escaped(filesharing::shell_escaped({left.data(), left.size() - 1}));

  std::vector<char> escaped(2 * left.size() - 1, '?');
  fuzz::require(DBCS_SpecialChar(left.data(), escaped.data(), "\"$`\\") == 0);
  check_escaped(escaped.data());

  fuzz::require(strequal(left.data(), left.data()) == 1);
  fuzz::require(strequal(left.data(), right.data()) == strequal(right.data(), left.data()));
  const char* const slash = strchr_m(right.data(), '/');
  fuzz::require(slash == nullptr || *slash == '/');
  (void)strchr_m(right.data(), 0x20ac);
  (void)filesharing::to_int(left.data());
  (void)filesharing::to_unsigned(right.data());
  return 0;
}
