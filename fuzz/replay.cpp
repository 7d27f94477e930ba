// Runs a fuzz target over the files that are named, where there is no fuzzing engine.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "fuzz/fuzz_input.h"

int main(int argc, char** argv) {
  int replayed = 0;
  for (int argument = 1; argument < argc; ++argument) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[argument])) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string input{std::istreambuf_iterator<char>(file), {}};
      std::cerr << entry.path().string() << '\n';  // the last one named is the one that failed
      (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
      ++replayed;
    }
  }
  return replayed > 0 ? 0 : 1;
}
