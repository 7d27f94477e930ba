#include "bench/cost.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "filesharing/groups.h"

namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

struct Used {
  double user;
  double system;
};

Used used_by(int who) {
  rusage usage = {};
  (void)getrusage(who, &usage);
  return {seconds(usage.ru_utime), seconds(usage.ru_stime)};
}

// The most memory that was resident so far.
double peak_bytes() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

Cost measure(const Call& call, const Repeated& repeated) {
  const double peak = peak_bytes();
  Used own = {};
  std::size_t list = 0;
  for (int i = 0; i < repeated.calls; ++i) {
    const Used before = used_by(RUSAGE_SELF);
    list = call();
    const Used after = used_by(RUSAGE_SELF);
    own.user += after.user - before.user;
    own.system += after.system - before.system;
    repeated.clean_up();
  }
  const Used commands = used_by(RUSAGE_CHILDREN);
  const double calls = repeated.calls;
  return {.cpu = (own.user + own.system) / calls,
          .user = (own.user + commands.user) / calls,
          .all_cpu = (own.user + own.system + commands.user + commands.system) / calls,
          .peak_bytes = peak_bytes() - peak,
          .list_bytes = static_cast<double>(list)};
}

void fail(const char* what) {
  std::cerr << what << '\n';
  std::exit(1);
}

// Runs work in a child, which writes its result to the descriptor that it is given.
template <class Result, class Work>
Result from_child(Work work) {
  int ends[2];
  if (pipe(ends) != 0) fail("no pipe");
  const pid_t child = fork();
  if (child < 0) fail("no child");
  if (child == 0) {
    (void)close(ends[0]);
    work(ends[1]);
    _exit(0);
  }
  (void)close(ends[1]);
  Result cost = {};
  const bool told = read(ends[0], &cost, sizeof cost) == sizeof cost;
  (void)close(ends[0]);
  int status = 0;
  (void)waitpid(child, &status, 0);
  if (!told || status != 0) fail("a measured call failed");
  return cost;
}

}  // namespace

Cost cost_of(const Call& call, const Repeated& repeated) {
  return from_child<Cost>([&](int result) {
    // What any first call brings in of the libraries is not this one's.
    (void)GetNumOfGrps();
    const Cost cost = measure(call, repeated);
    if (write(result, &cost, sizeof cost) != sizeof cost) _exit(1);
  });
}

double cpu_of_lines(const char* path) {
  return from_child<double>([&](int result) {
    (void)dup2(result, STDOUT_FILENO);
    (void)execlp("run_lines", "run_lines", path, nullptr);
    _exit(1);
  });
}

void require_ok(unsigned result, const char* call) {
  if (result == 0) return;
  std::cerr << call << ": " << static_cast<int>(result) << '\n';
  std::exit(1);
}
