// The fields of account lines and the names of member lists, read character by character. Each
// reader asks whether its buffer is full before it reads, so that no character is lost between two
// calls.
#include <algorithm>
#include <cstdio>

#include "filesharing/conf.h"

namespace {

// A missing stream is at its end.
int next_character(FILE* stream) {
  return stream == nullptr ? EOF : std::getc(stream);
}

// A caller's buffer of size bytes, always terminated. Without a buffer or a size it is full.
class FieldBuffer {
 public:
  FieldBuffer(char* buffer, int size)
      : buffer_(buffer), size_(buffer == nullptr ? 0 : std::max(size, 0)) {
    terminate();
  }
  bool full() const { return length_ >= size_ - 1; }
  void store(int character) {
    buffer_[length_++] = static_cast<char>(character);
    terminate();
  }
  int length() const { return length_; }

 private:
  void terminate() {
    if (length_ < size_) {
      buffer_[length_] = '\0';
    }
  }

  char* buffer_;
  int size_;
  int length_ = 0;
};

constexpr int kColonsBeforeMembers = 3;

}  // namespace

int GotoUserName(char* buf, int size, FILE* stream) {
  FieldBuffer field(buf, size);
  int colons = 0;
  while (!field.full()) {
    const int character = next_character(stream);
    if (character == EOF) {
      return 3;
    }
    if (character == '\n') {
      return 2;
    }
    field.store(character);
    if (character == ':' && ++colons == kColonsBeforeMembers) {
      return 1;
    }
  }
  return 2;
}

int GetUserName(char* buf, int size, int* last, FILE* stream) {
  FieldBuffer name(buf, size);
  bool comma = false;
  bool at_end = false;
  while (!name.full()) {
    const int character = next_character(stream);
    comma = character == ',';
    if (comma) {
      break;
    }
    at_end = character == EOF;
    if (at_end || character == '\n') {
      break;
    }
    if (character != ' ' || name.length() > 0) {
      name.store(character);
    }
  }
  if (last != nullptr) {
    *last = comma ? 0 : 1;
  }
  if (name.length() > 0) {
    return 0;
  }
  return at_end ? 2 : 1;
}

int readvkey(char* buf, int size, FILE* stream) {
  FieldBuffer token(buf, size);
  while (!token.full()) {
    const int character = next_character(stream);
    if (character == EOF) {
      break;
    }
    token.store(character);
    if (character == ':' || character == '\n' || character == '\r') {
      break;
    }
  }
  return token.length();
}

int ReadGroup(char* buf, int size, FILE* stream, int* status) {
  FieldBuffer head(buf, size);
  int stop = 1;
  int colons = 0;
  while (!head.full()) {
    const int character = next_character(stream);
    if (character == EOF) {
      stop = 2;
      break;
    }
    if (character == '\n' || character == '\r') {
      break;
    }
    head.store(character);
    if (character == ':' && ++colons == kColonsBeforeMembers) {
      stop = 0;
      break;
    }
  }
  if (status != nullptr) {
    *status = stop;
  }
  return head.length();
}
