// A row of the table: how much more one thing takes than another, measured by turns, so that what
// else the machine does meets both.
#ifndef BENCH_RATIO_H
#define BENCH_RATIO_H

#include <benchmark/benchmark.h>

#include <functional>

using Sample = std::function<double()>;

// Registers a row. It makes a device for each run of the benchmark; samples come from it by turns.
struct Pair {
  Sample measured;
  Sample against;
};

struct Row {
  const char* name;
  double most;  // the ratio must not be above this
  int samples;
  std::function<Pair()> make;
};

void add_row(const Row& row);

// The rows of each subject.
void add_user_rows();
void add_group_rows();
void add_share_rows();
void add_command_rows();

#endif
