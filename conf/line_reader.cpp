#include "conf/line_reader.h"

#include <new>

namespace filesharing {

bool PieceReader::next() {
  text_.clear();
  starts_line_ = at_line_start_;
  while (text_.size() < most_) {
    const int character = std::getc(stream_);
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
    const int character = std::getc(stream_);
    at_line_start_ = character == '\n' || character == EOF;
  }
}

bool LineReader::next() {
  const ssize_t length = getline(&buffer_, &size_, stream_);
  length_ = length < 0 ? 0 : static_cast<std::size_t>(length);
  if (length < 0 && std::feof(stream_) == 0 && std::ferror(stream_) == 0) {
    throw std::bad_alloc();  // the only other reason
  }
  return length >= 0;
}

}  // namespace filesharing
