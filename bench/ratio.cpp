#include "bench/ratio.h"

#include <algorithm>
#include <vector>

namespace {

double median(std::vector<double> samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return *middle;
}

void compare(benchmark::State& state, const Row& row) {
  const Pair pair = row.make();
  std::vector<double> measured;
  std::vector<double> against;
  for ([[maybe_unused]] const auto _ : state) {
    measured.push_back(pair.measured());
    against.push_back(pair.against());
    state.SetIterationTime(measured.back());
  }
  state.counters["measured"] = median(measured);
  state.counters["against"] = median(against);
  state.counters["ratio"] = median(measured) / median(against);
  state.counters["most"] = row.most;
}

}  // namespace

void add_row(const Row& row) {
  benchmark::RegisterBenchmark(row.name, [row](benchmark::State& state) { compare(state, row); })
      ->Iterations(row.samples)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

int main(int argc, char** argv) {
  add_user_rows();
  add_group_rows();
  add_share_rows();
  add_command_rows();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
