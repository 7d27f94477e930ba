#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include "bench/cost.h"
#include "bench/large_device.h"
#include "bench/ratio.h"
#include "filesharing/filesharing.h"

namespace {

// Looks for the share, or for something of it, that is the last of so many.
using LookUp = void (*)(int shares);

void require(bool found, const char* call) {
  require_ok(found ? FSH_OK : FSH_FAILED, call);
}

std::string last_share(int shares) {
  return "share" + std::to_string(shares);
}

void get_info(int shares) {
  ShareInfo share = {};
  (void)std::snprintf(share.name, sizeof share.name, "%s", last_share(shares).c_str());
  require_ok(GetShareInfo(&share), "GetShareInfo");
}

void look_for_name(int shares) {
  require(ShareExist(last_share(shares).c_str()) == 1, "ShareExist");
}

void look_for_folder(int) {
  require(dir_shared("/public/", 1) == 1, "dir_shared");
}

void look_for_public_share(int) {
  char* const name = GetPublicSh(1);
  require(name != nullptr, "GetPublicSh");
  std::free(name);
}

Sample cpu(int shares, LookUp look_up) {
  constexpr int kCalls = 10;
  return [device = LargeDevice({.groups = 10, .shares = shares}), shares, look_up] {
    device.set_up();
    const auto call = [shares, look_up]() -> std::size_t {
      look_up(shares);
      return 0;
    };
    return cost_of(call, {.calls = kCalls}).cpu;
  };
}

void add_look_up(const char* name, LookUp look_up) {
  add_row({.name = name, .most = 12, .samples = 15, .make = [look_up] {
             return Pair{.measured = cpu(2000, look_up), .against = cpu(200, look_up)};
           }});
}

}  // namespace

void add_share_rows() {
  add_look_up("GetShareInfo, 2,000 shares / 200 shares", get_info);
  add_look_up("ShareExist, 2,000 shares / 200 shares", look_for_name);
  add_look_up("dir_shared, 2,000 shares / 200 shares", look_for_folder);
  add_look_up("GetPublicSh, 2,000 shares / 200 shares", look_for_public_share);
}
