#include "conf/line_reader.h"

#include <new>

namespace filesharing {

bool PieceReader::next() {
  text_.clear();
  starts_line_ = at_line_start_;
  while (text_.size() < most_) {
    const int character = take_character();
    if (character == EOF) {
      break;
    }
    text_.push_back(static_cast<char>(character));
    if (character == '\n') {
      break;
    }
  }
  at_line_start_ = ends_line();
  return !text_.empty();
}

void PieceReader::skip_rest_of_line() {
  while (!at_line_start_) {
    const int character = take_character();
    at_line_start_ = character == '\n' || character == EOF;
  }
}

int PieceReader::take_character() {
  if (stream_ != nullptr) {
    return std::getc(stream_);
  }
  if (rest_.empty()) {
    return EOF;
  }
  const auto character = static_cast<unsigned char>(rest_.front());
  rest_.remove_prefix(1);
  return character;
}

bool LineReader::next() {
  const ssize_t length = getline(&buffer_, &size_, stream_);
  length_ = length < 0 ? 0 : static_cast<std::size_t>(length);
  if (length < 0 && std::feof(stream_) == 0 && std::ferror(stream_) == 0) {
    throw std::bad_alloc();  // the only other reason
  }
  return length >= 0;
}

bool BlockLineReader::next() {
  std::size_t feed = unread().find('\n');
  for (bool more = true; feed == std::string_view::npos && more;) {
    const std::size_t searched = unread().size();
    more = read_block();
    feed = unread().find('\n', searched);
  }
  line_ = unread().substr(0, feed == std::string_view::npos ? feed : feed + 1);
  begin_ += line_.size();
  return !line_.empty();
}

// Adds a block to what is unread. False at the end of the file.
bool BlockLineReader::read_block() {
  block_.erase(0, begin_);
  end_ -= begin_;
  begin_ = 0;
  block_.resize(end_ + kBlock);
  const std::size_t length = std::fread(block_.data() + end_, 1, kBlock, stream_);
  end_ += length;
  return length > 0;
}

}  // namespace filesharing
