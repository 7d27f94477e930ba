// Passwords: typed at the terminal without an echo, or one line of standard input. Never an
// argument, which every process of the machine could read.
#ifndef FILESHARE_PASSWORD_H
#define FILESHARE_PASSWORD_H

#include <array>
#include <cstddef>
#include <string>

namespace fileshare {

// A password, in one place of memory, which is erased when it goes.
class Secret {
 public:
  Secret() = default;
  ~Secret() { erase(); }
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;

  [[nodiscard]] const char* text() const { return text_.data(); }
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] bool append(char character);  // false when it is full
  void erase();

 private:
  std::array<char, 256> text_{};  // larger than any password that counts, always terminated
  std::size_t size_ = 0;
};

// Read a password; prompt is for the terminal, such as: Password of user "bob". 0, or the exit
// status after saying what was wrong. A password to be set is asked for twice at a terminal, and
// has to be one that every service takes: 15 characters at most, no control characters, no "-"
// first. It may be empty. Whoever copies it, into a record, erases the copy: explicit_bzero(3).
int read_password(const std::string& prompt, Secret& password);
int read_new_password(const std::string& prompt, Secret& password);

}  // namespace fileshare

#endif
