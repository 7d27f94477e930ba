// Paths without their dot segments, in place.
#include "filesharing/album.h"
#include "fuzz/fuzz_input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<char> path = fuzz::exact_copy(fuzz::Input(data, size).rest());
  const std::string before = path.data();
  (void)de_dotdot(path.data());
  const std::string after = path.data();
  fuzz::require(after.size() <= before.size());
  fuzz::require(after.find("/../") == std::string::npos);
  fuzz::require(!after.starts_with("../"));
  fuzz::require(after.find("//") == std::string::npos);
  return 0;
}
