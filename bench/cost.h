// What a call costs, measured in a process of its own, as a page would make it. That process takes
// along what the call leaves open or allocated.
#ifndef BENCH_COST_H
#define BENCH_COST_H

#include <cstddef>
#include <functional>

struct Cost {
  double cpu;         // seconds of the process
  double user;        // seconds outside the kernel, of the process and of the commands it ran
  double all_cpu;     // seconds of the process and of the commands
  double peak_bytes;  // growth of the most memory that was resident
  double list_bytes;  // size of what the call returned
};

// The call tells the size of what it returns, or 0. One that fails ends the program.
using Call = std::function<std::size_t()>;

// The mean of several calls, so that what the dynamic linker does at the first one counts less.
// What clean_up does after each does not count at all.
struct Repeated {
  int calls = 1;
  std::function<void()> clean_up = [] {};
};
Cost cost_of(const Call& call, const Repeated& repeated = {});

// Seconds of a C program that runs the command lines of a file through system(3) and does nothing
// else, and of its commands.
double cpu_of_lines(const char* path);

// Ends the program when a call of the library has failed.
void require_ok(unsigned result, const char* call);

#endif
