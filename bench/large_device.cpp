#include "bench/large_device.h"

#include <sys/vfs.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

namespace {

constexpr int kGroupsOfUser = 3;
constexpr int kGroupsOfShare = 3;
constexpr int kFirstId = 2000;

bool is_device() {
  constexpr long kTmpfs = 0x01021994;
  struct statfs root = {};
  return statfs("/", &root) == 0 && root.f_type == kTmpfs &&
         std::filesystem::is_directory("/run/stand_in");
}

std::string numbered(const char* word, int number) {
  return word + std::to_string(number);
}

// The members of a group behind each other, each written by write(user).
template <class Write>
std::string joined(const std::vector<int>& users, Write write) {
  std::string list;
  for (const int user : users) list += (list.empty() ? "" : ",") + write(user);
  return list;
}

// The users of each group: user n is in the groups n, n + 1 and n + 2, counted round.
std::vector<std::vector<int>> members(const DeviceSize& size) {
  std::vector<std::vector<int>> groups(static_cast<std::size_t>(size.groups));
  for (int user = 1; user <= size.users && size.groups > 0; ++user) {
    for (int i = 0; i < std::min(kGroupsOfUser, size.groups); ++i) {
      groups[static_cast<std::size_t>((user + i) % size.groups)].push_back(user);
    }
  }
  return groups;
}

}  // namespace

LargeDevice::LargeDevice(const DeviceSize& size) {
  if (!is_device()) {
    std::cerr << "run the benchmarks through device/enter: they change /etc\n";
    std::exit(1);
  }
  make_accounts(size);
  make_groups(size);
  make_shares(size);
}

void LargeDevice::make_accounts(const DeviceSize& size) {
  std::string& passwd = files_["/etc/passwd"];
  std::string& smbpasswd = files_["/etc/samba/smbpasswd"];
  passwd = "root:x:0:0:root:/root:/bin/sh\nadmin:JqgTCfJ7s1Oyk:500:501:::/dev/null\n";
  for (int user = 1; user <= size.users; ++user) {
    const std::string name = numbered("user", user);
    const std::string uid = std::to_string(kFirstId + user - 1);
    passwd += name + ":JqEAm.QJjPY0A:" + uid + ":501:::/dev/null\n";
    smbpasswd += name + ":" + uid + ":" + std::string(32, 'X') + ":" + std::string(32, 'A') +
                 ":[U          ]:LCT-00000000:\n";
  }
}

void LargeDevice::make_groups(const DeviceSize& size) {
  const auto named = [](int user) { return numbered("user", user); };
  const auto with_quota = [](int user) { return numbered("user", user) + ":500"; };
  std::vector<int> everyone;
  for (int user = 1; user <= size.users; ++user) everyone.push_back(user);
  std::string& group = files_["/etc/group"];
  std::string& usrgrp = files_["/etc/usrgrp.info"];
  group = "root:x:0:\nadministrators:x:500:admin\neveryone:x:501:" + joined(everyone, named) + "\n";
  usrgrp = "everyone=" + joined(everyone, with_quota) + "\nadministrators=admin:0\n";
  int number = 0;
  for (const std::vector<int>& users : members(size)) {
    const std::string name = numbered("group", ++number);
    group +=
        name + ":x:" + std::to_string(kFirstId + number - 1) + ":" + joined(users, named) + "\n";
    usrgrp += name + "=" + joined(users, with_quota) + "\n";
  }
}

void LargeDevice::make_shares(const DeviceSize& size) {
  std::string& registry = files_["/etc/share.info"];
  std::string& sections = files_["/etc/samba/smb.conf"];
  sections = "[global]\nworkgroup=WORKGROUP\n";
  for (int share = 1; share <= size.shares; ++share) {
    const std::string name = numbered("share", share);
    const std::string path = share == size.shares ? "/public/" : "/" + name + "/";
    std::string groups = "administrators:7";
    for (int i = 0; i < std::min(kGroupsOfShare, size.groups); ++i) {
      groups += "," + numbered("group", (share + i) % size.groups + 1) + ":7";
    }
    registry += name + "=0:1:A folder:" + path + ":" + groups + "\n";
    sections += "[" + name + "]\nvalid users=@\"administrators\"\ncomment=A folder\n" +
                "path=/harddisk/volume_1/data" + path +
                "\nread only=yes\nwrite list=@\"administrators\"\n";
  }
}

void LargeDevice::set_up() const {
  for (const auto& [path, text] : files_) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
  }
}
