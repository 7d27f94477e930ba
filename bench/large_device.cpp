#include "bench/large_device.h"

#include <sys/vfs.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

std::string read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << text;
}

std::string numbered(const char* word, int number) {
  return word + std::to_string(number);
}

}  // namespace

LargeDevice::LargeDevice() {
  constexpr long kTmpfs = 0x01021994;
  struct statfs root = {};
  if (statfs("/", &root) == 0 && root.f_type == kTmpfs &&
      std::filesystem::is_directory("/run/stand_in")) {
    return;
  }
  std::cerr << "run the benchmarks through device/enter: they change /etc\n";
  std::exit(1);
}

LargeDevice::~LargeDevice() {
  for (const auto& [path, text] : factory_) write(path, text);
}

void LargeDevice::append(const std::string& path, const std::string& text) {
  factory_.try_emplace(path, read(path));
  write(path, large_[path] = read(path) + text);
}

void LargeDevice::renew() const {
  for (const auto& [path, text] : large_) write(path, text);
}

void LargeDevice::add_users(int count) {
  std::string accounts;
  std::string list;
  for (int number = 1; number <= count; ++number) {
    const std::string name = numbered("user", number);
    accounts += name + ":JqEAm.QJjPY0A:" + std::to_string(2002 + number) + ":501:::/dev/null\n";
    list += (list.empty() ? "" : ",") + name + ":0";
  }
  append("/etc/passwd", accounts);
  const std::string path = "/etc/usrgrp.info";
  factory_.try_emplace(path, read(path));
  write(path, large_[path] = "everyone=" + list + "\n");
}

void LargeDevice::add_groups(int count) {
  std::string lines;
  for (int number = 1; number <= count; ++number) {
    lines +=
        numbered("group", number) + ":x:" + std::to_string(2001 + number) + ":alice,bob,carol\n";
  }
  append("/etc/group", lines);
}

void LargeDevice::add_shares(int count) {
  std::string lines;
  std::string sections;
  for (int number = 1; number <= count; ++number) {
    const std::string name = numbered("share", number);
    lines += name + "=0:1:A folder:/" + name + "/:administrators:7,staff:7,everyone:5\n";
    sections += "[" + name +
                "]\nvalid users=@\"administrators\",@\"staff\",@\"everyone\"\ncomment=A folder\n"
                "path=/harddisk/volume_1/data/" +
                name + "/\nread only=yes\nwrite list=@\"administrators\",@\"staff\"\n";
  }
  append("/etc/share.info", lines);
  append("/etc/samba/smb.conf", sections);
}
