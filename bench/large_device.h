// A device with many users, groups and shares. Programs that use it run inside a device only: they
// rewrite files of /etc.
#ifndef BENCH_LARGE_DEVICE_H
#define BENCH_LARGE_DEVICE_H

#include <map>
#include <string>

struct DeviceSize {
  int users = 0;   // user1, user2, ..., each in "everyone" and in three of the groups
  int groups = 0;  // group1, group2, ...
  int shares = 0;  // share1, share2, ..., each with three of the groups; the last one is public
};

class LargeDevice {
 public:
  // Ends the program outside a device.
  explicit LargeDevice(const DeviceSize& size);

  // Writes the files of this device, whatever they hold now.
  void set_up() const;

 private:
  void make_accounts(const DeviceSize& size);
  void make_groups(const DeviceSize& size);
  void make_shares(const DeviceSize& size);

  std::map<std::string, std::string> files_;
};

#endif
