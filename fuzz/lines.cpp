// Whole lines, and the blanks at the end of a text.
#include <cstring>

#include "conf/line_reader.h"
#include "filesharing/conf.h"
#include "fuzz/fuzz_input.h"

namespace {

constexpr std::size_t kLongerThanBlocks = 40000;

// Lines with their ends, one after the other, are the text again.
void read_lines(std::string text) {
  const fuzz::File file = fuzz::open_text(text);
  const bool has_zero_byte = text.find('\0') != std::string::npos;
  std::string read_back;
  char* line = nullptr;
  while (GetLineFromFile(&line, file.get()) == FSH_OK) {
    read_back += line;
    std::free(line);
  }
  fuzz::require(line == nullptr);
  fuzz::require(has_zero_byte || read_back == text);
}

// Read in blocks, lines are the same.
void read_blocks(std::string text) {
  const fuzz::File file = fuzz::open_text(text);
  const fuzz::File again = fuzz::open_text(text);
  filesharing::LineReader line(file.get());
  filesharing::BlockLineReader block_line(again.get());
  while (line.next()) {
    fuzz::require(block_line.next());
    fuzz::require(block_line.text() == line.text());
  }
  fuzz::require(!block_line.next());
}

void read_pieces(std::string text, std::size_t most) {
  const fuzz::File file = fuzz::open_text(text);
  std::string read_back;
  filesharing::PieceReader piece(file.get(), most);
  filesharing::PieceReader piece_of_text(text, most);
  while (piece.next()) {
    fuzz::require(piece_of_text.next() && piece_of_text.text() == piece.text());
    fuzz::require(piece.text().size() <= most);
    fuzz::require(piece.starts_line() == (read_back.empty() || read_back.back() == '\n'));
    read_back += piece.text();
  }
  fuzz::require(read_back == text && !piece_of_text.next());
}

void strip(const std::string& text) {
  std::vector<char> buffer = fuzz::exact_copy(text);
  const std::string before = buffer.data();
  StripEndingSpace(buffer.data());
  const std::string after = buffer.data();
  fuzz::require(after.size() <= before.size());
  const bool ended = after.ends_with('\n');
  const std::string kept = after.substr(0, after.size() - (ended ? 1 : 0));
  fuzz::require(before.starts_with(kept));
  StripEndingSpace(buffer.data());
  fuzz::require(after == buffer.data());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzz::Input(data, size).rest();
  read_lines(text);
  read_blocks(text);
  // A file that is longer than a block, whose lines end at any place in it.
  if (!text.empty() && data[0] % 16 == 0) {
    std::string longer;
    while (longer.size() < kLongerThanBlocks) longer += text;
    read_blocks(longer);
  }
  read_pieces(text, size == 0 ? 1 : std::size_t{data[0]} + 1);
  strip(text);
  return 0;
}
