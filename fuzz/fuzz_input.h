// What the fuzz targets share: taking an input apart, streams and buffers made of it, and checks.
#ifndef FUZZ_FUZZ_INPUT_H
#define FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

// Arguments stand one a line at the head of the input, the file that is parsed behind them: so that
// a corpus can be written with an editor.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : text_(reinterpret_cast<const char*>(data), size) {}

  std::string take_line() {
    const std::size_t end = text_.find('\n', at_);
    const std::string line = text_.substr(at_, end == std::string::npos ? end : end - at_);
    at_ = end == std::string::npos ? text_.size() : end + 1;
    return line;
  }
  std::string rest() const { return text_.substr(at_); }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

// A wrong result counts as a crash.
inline void require(bool condition) {
  if (!condition) std::abort();
}

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// A stream that reads the text, which must outlive it.
inline File open_text(std::string& text) {
  return File(text.empty() ? std::fopen("/dev/null", "r")
                           : fmemopen(text.data(), text.size(), "r"));
}

// The text in memory of exactly its size, so that a step over its end is seen.
inline std::vector<char> exact_copy(const std::string& text) {
  return {text.c_str(), text.c_str() + text.size() + 1};
}

}  // namespace fuzz

#endif
