#include "bench/cost.h"
#include "bench/large_device.h"
#include "bench/ratio.h"
#include "filesharing/filesharing.h"

namespace {

std::size_t list_groups() {
  GroupItem* groups = nullptr;
  require_ok(GetAllGroup(&groups), "GetAllGroup");
  return 0;
}

Sample cpu(const DeviceSize& size) {
  return [device = LargeDevice(size)] {
    device.set_up();
    return cost_of(list_groups).cpu;
  };
}

}  // namespace

void add_group_rows() {
  add_row({.name = "GetAllGroup, 250 groups and 200 shares / 25 groups and 20 shares",
           .most = 15,
           .samples = 15,
           .make = [] {
             return Pair{.measured = cpu({.users = 1000, .groups = 250, .shares = 200}),
                         .against = cpu({.users = 100, .groups = 25, .shares = 20})};
           }});
}
