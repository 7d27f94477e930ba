#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/command_lines.h"
#include "bench/cost.h"
#include "bench/large_device.h"
#include "bench/ratio.h"
#include "filesharing/filesharing.h"

namespace {

constexpr DeviceSize kUsualDevice{.users = 10, .groups = 10, .shares = 10};

void add_user() {
  UserInfo user = {};
  std::strcpy(user.name, "dave");
  std::strcpy(user.password, "correcthorse");
  user.quota = 500;
  require_ok(AddUser(&user), "AddUser");
}

void add_user_to_groups() {
  const char* const groups[] = {"group7", "group8"};
  require_ok(AddUserToGroups("user1", groups, 2), "AddUserToGroups");
}

void add_share() {
  ShareInfo share = {};
  std::strcpy(share.name, "photos");
  std::strcpy(share.path, "/photos/");
  share.volume = 1;
  require_ok(AddShare(&share), "AddShare");
}

Sample user_time_of_add_user(int users) {
  return [device = LargeDevice({.users = users, .groups = 10})] {
    device.set_up();
    return cost_of([]() -> std::size_t {
             add_user();
             return 0;
           })
        .user;
  };
}

Pair against_its_commands(void (*operation)()) {
  const LargeDevice device(kUsualDevice);
  device.set_up();
  const CommandLines lines(operation);
  return {.measured =
              [device, operation] {
                device.set_up();
                return cost_of([operation]() -> std::size_t {
                         operation();
                         return 0;
                       })
                    .all_cpu;
              },
          .against =
              [device, lines] {
                device.set_up();
                lines.set_up();
                return cpu_of_lines(CommandLines::path());
              }};
}

void add_operation(const char* name, void (*operation)()) {
  add_row({.name = name, .most = 1.3, .samples = 25, .make = [operation] {
             return against_its_commands(operation);
           }});
}

}  // namespace

void add_command_rows() {
  add_row({.name = "user CPU of AddUser, 10,000 users / 10 users",
           .most = 4,
           .samples = 25,
           .make = [] {
             return Pair{.measured = user_time_of_add_user(10000),
                         .against = user_time_of_add_user(10)};
           }});
  add_operation("CPU of AddUser / its commands through system", add_user);
  add_operation("CPU of AddUserToGroups / its commands through system", add_user_to_groups);
  add_operation("CPU of AddShare / its commands through system", add_share);
}
