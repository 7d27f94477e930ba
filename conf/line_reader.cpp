#include "conf/line_reader.h"

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

}  // namespace filesharing
