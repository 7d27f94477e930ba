// The command lines that an operation runs, to run them again without it.
#ifndef BENCH_COMMAND_LINES_H
#define BENCH_COMMAND_LINES_H

#include <functional>
#include <map>
#include <string>

class CommandLines {
 public:
  // Makes the call in a process of its own and writes down what the library gives to system(3).
  explicit CommandLines(const std::function<void()>& call);

  // Puts the temporary files of the call back where the command lines expect them.
  void set_up() const;

  // One line each.
  static const char* path();

 private:
  std::map<std::string, std::string> copied_;
};

#endif
