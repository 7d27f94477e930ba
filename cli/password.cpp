#include "cli/password.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include "cli/failure.h"
#include "cli/terminal.h"
#include "filesharing/users.h"

namespace fileshare {
namespace {

constexpr std::size_t kCharactersThatCount = 15;

enum class Line { kRead, kNothing, kTooLong, kZeroByte };

// Byte by byte: a buffered stream would keep a copy of the password, and swallow what follows it.
Line read_line(Secret& line) {
  line.erase();
  char character = 0;
  ssize_t got = 0;
  Line result = Line::kRead;
  while ((got = read(STDIN_FILENO, &character, 1)) == 1 && character != '\n') {
    if (character == '\0') result = Line::kZeroByte;
    if (!line.append(character)) result = Line::kTooLong;
  }
  const bool nothing = got < 0 || (got == 0 && line.size() == 0);
  character = '\0';
  return nothing ? Line::kNothing : result;
}

int tell(Line result) {
  switch (result) {
    case Line::kRead:
      return kDone;
    case Line::kNothing:
      return refuse("no password was given", kUsageError);
    case Line::kTooLong:
      return refuse("the password is too long", kUsageError);
    case Line::kZeroByte:
      return refuse("a password can not contain control characters", kUsageError);
  }
  return kUsageError;
}

Line read_quietly(Secret& line) {
  const QuietTerminal quiet;
  return read_line(line);
}

int ask(const std::string& prompt, Secret& password) {
  if (isatty(STDIN_FILENO) == 0) return tell(read_line(password));
  std::cerr << prompt << ": " << std::flush;
  return tell(read_quietly(password));
}

const char* new_password_fault(const Secret& password) {
  const char* text = password.text();
  if (password.size() > kCharactersThatCount) return "a password has 15 characters at most";
  // Samba's tool would take it for an option.
  if (text[0] == '-') return "a password can not begin with \"-\"";
  for (const char* next = text; *next != '\0'; ++next) {
    const auto byte = static_cast<unsigned char>(*next);
    if (byte < 0x20 || byte == 0x7F) return "a password can not contain control characters";
  }
  // The library would keep the old password.
  if (std::strcmp(text, FSH_PASSWORD_PLACEHOLDER) == 0) return "this password is reserved";
  return nullptr;
}

}  // namespace

bool Secret::append(char character) {
  if (size_ + 1 == text_.size()) return false;
  text_[size_++] = character;
  return true;
}

void Secret::erase() {
  explicit_bzero(text_.data(), text_.size());
  size_ = 0;
}

int read_password(const std::string& prompt, Secret& password) {
  return ask(prompt, password);
}

int read_new_password(const std::string& prompt, Secret& password) {
  if (const int status = ask(prompt, password); status != kDone) return status;
  if (const char* fault = new_password_fault(password)) return refuse(fault, kUsageError);
  if (isatty(STDIN_FILENO) == 0) return kDone;
  Secret again;
  if (const int status = ask(prompt + " again", again); status != kDone) return status;
  if (std::strcmp(password.text(), again.text()) == 0) return kDone;
  return refuse("the two passwords are not the same", kUsageError);
}

}  // namespace fileshare
