#include <pwd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/cost.h"
#include "bench/large_device.h"
#include "bench/ratio.h"
#include "filesharing/filesharing.h"

namespace {

UserNameItem* names = nullptr;

std::size_t list_names() {
  require_ok(GetUserNameList(&names), "GetUserNameList");
  return 0;
}

std::size_t list_names_and_measure() {
  (void)list_names();
  std::size_t bytes = 0;
  for (const UserNameItem* name = names; name != nullptr; name = name->next) bytes += sizeof *name;
  return bytes;
}

std::size_t size_of(const UserItem& item) {
  constexpr std::size_t kArray = 255 * sizeof(char*);
  std::size_t bytes = sizeof item + sizeof *item.groups + kArray;
  for (int i = 0; i < item.groups->count; ++i) bytes += std::strlen(item.groups->list[i]) + 1;
  return bytes;
}

UserItem* users = nullptr;

std::size_t list_users() {
  require_ok(GetAllUser(&users), "GetAllUser");
  return 0;
}

std::size_t list_users_and_measure() {
  (void)list_users();
  std::size_t bytes = 0;
  for (const UserItem* user = users; user != nullptr; user = user->next) bytes += size_of(*user);
  return bytes;
}

// What a page would write instead, without keeping the names.
std::size_t loop_over_accounts() {
  std::FILE* const file = std::fopen("/etc/passwd", "re");
  std::size_t listed = 0;
  while (const passwd* account = fgetpwent(file)) listed += account->pw_uid >= 2000 ? 1 : 0;
  (void)std::fclose(file);
  benchmark::DoNotOptimize(listed);
  return 0;
}

std::size_t loop_over_lines() {
  std::FILE* const file = std::fopen("/etc/passwd", "re");
  char* line = nullptr;
  std::size_t size = 0;
  while (getline(&line, &size, file) > 0) benchmark::DoNotOptimize(line);
  std::free(line);
  (void)std::fclose(file);
  return 0;
}

Sample cpu(const DeviceSize& size, const Call& call, const Repeated& repeated = {}) {
  return [device = LargeDevice(size), call, repeated] {
    device.set_up();
    return cost_of(call, repeated).cpu;
  };
}

Pair names_against(const Call& loop) {
  constexpr int kCalls = 20;
  const DeviceSize size{.users = 10000};
  return {.measured =
              cpu(size, list_names, {.calls = kCalls, .clean_up = [] { FreeUserNameList(names); }}),
          .against = cpu(size, loop, {.calls = kCalls})};
}

Pair all_users() {
  return {.measured = cpu({.users = 8000, .groups = 50}, list_users),
          .against = cpu({.users = 1000, .groups = 50}, list_users)};
}

// The growth of the resident memory against the size of the list.
Pair memory_of(const Call& call) {
  const LargeDevice device({.users = 10000, .groups = 50});
  const auto cost = [device, call] {
    device.set_up();
    return cost_of(call);
  };
  return {.measured = [cost] { return cost().peak_bytes; },
          .against = [cost] { return cost().list_bytes; }};
}

}  // namespace

void add_user_rows() {
  add_row({.name = "GetUserNameList, 10,000 users / a loop of fgetpwent",
           .most = 0.5,
           .samples = 25,
           .make = [] { return names_against(loop_over_accounts); }});
  add_row({.name = "GetUserNameList, 10,000 users / a loop of getline",
           .most = 4,
           .samples = 25,
           .make = [] { return names_against(loop_over_lines); }});
  add_row({.name = "GetAllUser, 8,000 users in 50 groups / 1,000 users in 50 groups",
           .most = 10,
           .samples = 5,
           .make = all_users});
  add_row({.name = "peak memory of GetUserNameList, 10,000 users / size of the list",
           .most = 3,
           .samples = 3,
           .make = [] { return memory_of(list_names_and_measure); }});
  add_row({.name = "peak memory of GetAllUser, 10,000 users / size of the list",
           .most = 3,
           .samples = 3,
           .make = [] { return memory_of(list_users_and_measure); }});
}
