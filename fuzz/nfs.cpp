// Entries of NFS hosts. Input: the name of an entry, then /etc/nfs.info.
#include <cstring>

#include "filesharing/shares.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/outside.h"

namespace {

void check(const NfsShare& read) {
  fuzz::require(std::memchr(read.name, '\0', sizeof read.name) != nullptr);
  fuzz::require(std::memchr(read.host, '\0', sizeof read.host) != nullptr);
  NfsShare entry = read;
  const int first = CheckNFSShare(&entry);
  fuzz::require(std::strlen(entry.host) <= std::strlen(read.host));
  fuzz::require(std::strchr(entry.host, ' ') == nullptr);
  fuzz::require(CheckNFSShare(&entry) == first);  // tidy already
  fuzz::require(first != 0 || (entry.mask >= 0 && entry.mask <= 32));
}

void read_all() {
  NfsShare* entries = nullptr;
  const unsigned result = ReadNFSShares(&entries);
  fuzz::require(result == FSH_OK || entries == nullptr);
  for (const NfsShare* entry = entries; entry != nullptr; entry = entry->next) check(*entry);
  FreeNFSShList(entries);
}

void read_one(const std::string& name) {
  NfsShare entry;
  std::memset(&entry, '?', sizeof entry);  // what was there before is no part of the entry
  std::memcpy(entry.name, name.data(), std::min(name.size(), sizeof entry.name));
  if (name.size() < sizeof entry.name) entry.name[name.size()] = '\0';
  if (ReadNFSShare(&entry) != FSH_OK) return;
  entry.name[sizeof entry.name - 1] = '\0';
  check(entry);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string name = input.take_line();
  std::string text = input.rest();
  const fuzz::Outside outside;
  fuzz::Outside::serve("/etc/nfs.info", text);
  const fuzz::Leftovers leftovers(fuzz::Leaves::kNothing);
  read_all();
  read_one(name);
  return 0;
}
