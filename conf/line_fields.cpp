// The fields of account lines and the names of member lists, read character by character. Each
// reader asks whether its buffer is full before it reads, so that no character is lost between two
// calls.
#include <cstdio>
#include <cstring>

#include "filesharing/conf.h"

namespace {

// A caller's buffer of size bytes, always terminated.
class FieldBuffer {
 public:
  FieldBuffer(char* buffer, int size) : buffer_(buffer), size_(buffer == nullptr ? 0 : size) {
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
    const int character = std::getc(stream);
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
  *last = 1;
  bool at_end = false;
  while (!name.full()) {
    const int character = std::getc(stream);
    if (character == ',') {
      *last = 0;
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
  if (name.length() > 0) {
    return 0;
  }
  return at_end ? 2 : 1;
}

int readvkey(char* buf, int size, FILE* stream) {
  FieldBuffer token(buf, size);
  while (!token.full()) {
    const int character = std::getc(stream);
    if (character == EOF) {
      break;
    }
    token.store(character);
    if (std::strchr(":\n\r", character) != nullptr) {
      break;
    }
  }
  return token.length();
}

int ReadGroup(char* buf, int size, FILE* stream, int* status) {
  FieldBuffer head(buf, size);
  *status = 1;
  int colons = 0;
  while (!head.full()) {
    const int character = std::getc(stream);
    if (character == EOF) {
      *status = 2;
      break;
    }
    if (character == '\n' || character == '\r') {
      break;
    }
    head.store(character);
    if (character == ':' && ++colons == kColonsBeforeMembers) {
      *status = 0;
      break;
    }
  }
  return head.length();
}
