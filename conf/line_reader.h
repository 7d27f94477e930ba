// Iterates the lines of a stream or of a text, whole or in pieces of a limited length.
#ifndef FILESHARING_CONF_LINE_READER_H
#define FILESHARING_CONF_LINE_READER_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace filesharing {

// Pieces of at most `most` characters; a line feed is part of the piece that it ends. Every byte is
// delivered, zero bytes too. A stream that could not be opened has no pieces.
class PieceReader {
 public:
  PieceReader(std::FILE* stream, std::size_t most) : stream_(stream), most_(most) {}
  PieceReader(std::string_view text, std::size_t most) : rest_(text), most_(most) {}

  // Reads the next piece. False at the end.
  bool next();

  // Skips what is left of the line of the current piece.
  void skip_rest_of_line();

  std::string_view text() const { return text_; }
  bool starts_line() const { return starts_line_; }
  bool ends_line() const { return !text_.empty() && text_.back() == '\n'; }

 private:
  int take_character();

  std::FILE* stream_ = nullptr;  // without one, the characters are those of rest_
  std::string_view rest_;
  std::size_t most_;
  std::string text_;
  bool starts_line_ = false;
  bool at_line_start_ = true;
};

// Whole lines of any length, each with its line feed if it has one; zero bytes too. Throws
// std::bad_alloc.
class LineReader {
 public:
  explicit LineReader(std::FILE* stream) : stream_(stream) {}
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader() { std::free(buffer_); }

  // Reads the next line. False at the end of the file.
  bool next();

  // The line, until the next one is read.
  std::string_view text() const { return {buffer_, length_}; }
  bool ends_line() const { return text().ends_with('\n'); }

 private:
  std::FILE* stream_;
  char* buffer_ = nullptr;
  std::size_t size_ = 0;  // of the buffer
  std::size_t length_ = 0;
};

// The same lines of a stream that nobody reads besides, which is read ahead: for files with many
// thousands of them, in half the time.
class BlockLineReader {
 public:
  explicit BlockLineReader(std::FILE* stream) : stream_(stream), block_(kBlock, '\0') {}

  // Reads the next line. False at the end of the file.
  bool next();

  // The line, until the next one is read.
  std::string_view text() const { return line_; }

 private:
  static constexpr std::size_t kBlock = 16384;

  std::string_view unread() const { return {block_.data() + begin_, end_ - begin_}; }
  bool read_block();

  std::FILE* stream_;
  std::string block_;      // longer than at first for a line that is
  std::size_t begin_ = 0;  // of what has been read and not delivered yet
  std::size_t end_ = 0;
  std::string_view line_;
};

}  // namespace filesharing

#endif
