// What the management pages wait for on a server with many users, groups and shares. Waits cost
// nothing here (the program's own sleep takes the C library's place), the cp of a rewrite is the
// device's stand-in.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "bench/large_device.h"
#include "filesharing/filesharing.h"

namespace {

// A benchmark of a call that fails would measure nothing.
void require_ok(unsigned result, const char* call) {
  if (result == FSH_OK) return;
  std::cerr << call << ": " << static_cast<int>(result) << '\n';
  std::exit(1);
}

int size_of(const benchmark::State& state) {
  return static_cast<int>(state.range(0));
}

void list_user_names(benchmark::State& state) {
  LargeDevice device;
  device.add_users(size_of(state));
  for ([[maybe_unused]] const auto _ : state) {
    UserNameItem* names = nullptr;
    require_ok(GetUserNameList(&names), "GetUserNameList");
    FreeUserNameList(names);
  }
}
BENCHMARK(list_user_names)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// The call leaves a stream open, so the number of iterations is limited.
void list_users(benchmark::State& state) {
  LargeDevice device;
  device.add_users(size_of(state));
  for ([[maybe_unused]] const auto _ : state) {
    UserItem* users = nullptr;
    require_ok(GetAllUser(&users), "GetAllUser");
    FreeUserList(users);
  }
}
BENCHMARK(list_users)->Arg(100)->Arg(1000)->Iterations(3)->Unit(benchmark::kMillisecond);

void list_shares(benchmark::State& state) {
  LargeDevice device;
  device.add_shares(size_of(state));
  for ([[maybe_unused]] const auto _ : state) {
    ShareInfo* shares = nullptr;
    require_ok(GetAllShare(&shares), "GetAllShare");
    FreeShareList(shares);
  }
}
BENCHMARK(list_shares)->Arg(30)->Arg(300)->Unit(benchmark::kMillisecond);

void find_last_share(benchmark::State& state) {
  LargeDevice device;
  device.add_shares(size_of(state));
  const std::string name = "share" + std::to_string(size_of(state));
  for ([[maybe_unused]] const auto _ : state) {
    ShareInfo share = {};
    std::snprintf(share.name, sizeof share.name, "%s", name.c_str());
    require_ok(GetShareInfo(&share), "GetShareInfo");
  }
}
BENCHMARK(find_last_share)->Arg(30)->Arg(300)->Unit(benchmark::kMicrosecond);

void write_share_section(benchmark::State& state) {
  LargeDevice device;
  device.add_shares(size_of(state));
  ShareInfo share = {};
  std::strcpy(share.name, "share7");
  std::strcpy(share.path, "/share7/");
  share.volume = 1;
  for ([[maybe_unused]] const auto _ : state) require_ok(SetSmbShare(&share, 0), "SetSmbShare");
}
BENCHMARK(write_share_section)->Arg(30)->Arg(300)->UseRealTime()->Unit(benchmark::kMillisecond);

// In a process of its own each time, as a page would call it.
void add_member(benchmark::State& state) {
  LargeDevice device;
  device.add_groups(size_of(state));
  const char* const users[] = {"admin"};
  for ([[maybe_unused]] const auto _ : state) {
    const pid_t child = fork();
    if (child == 0) _exit(AddUsersToSysGroup("group7", users, 1) == FSH_OK ? 0 : 1);
    int status = -1;
    (void)waitpid(child, &status, 0);
    require_ok(static_cast<unsigned>(status), "AddUsersToSysGroup");
    state.PauseTiming();
    device.renew();
    state.ResumeTiming();
  }
}
BENCHMARK(add_member)->Arg(100)->Arg(1000)->UseRealTime()->Unit(benchmark::kMillisecond);

void find_last_key(benchmark::State& state) {
  std::string text = "[network]\n";
  for (int number = 1; number <= size_of(state); ++number) {
    text += "key" + std::to_string(number) + "=value\n";
  }
  const std::string key = "key" + std::to_string(size_of(state));
  std::FILE* const file = fmemopen(text.data(), text.size(), "r");
  for ([[maybe_unused]] const auto _ : state) {
    char value[21];
    require_ok(FSH_GetStr("network", key.c_str(), value, 20, file), "FSH_GetStr");
  }
  (void)std::fclose(file);
}
BENCHMARK(find_last_key)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
