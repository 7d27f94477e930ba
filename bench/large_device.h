// A device with many users, groups or shares, as long as the object lives: the files that it
// rewrites are put back afterwards. Ends the program outside a device.
#ifndef BENCH_LARGE_DEVICE_H
#define BENCH_LARGE_DEVICE_H

#include <map>
#include <string>

class LargeDevice {
 public:
  LargeDevice();
  ~LargeDevice();
  LargeDevice(const LargeDevice&) = delete;
  LargeDevice& operator=(const LargeDevice&) = delete;

  // Users user1, user2, ... in /etc/passwd and in the list of "everyone".
  void add_users(int count);
  // Groups group1, group2, ... with three members each.
  void add_groups(int count);
  // Shares share1, share2, ... in the registry and in smb.conf.
  void add_shares(int count);

  // Puts the files back that add_ functions have written, as these left them.
  void renew() const;

 private:
  void append(const std::string& path, const std::string& text);

  std::map<std::string, std::string> factory_;
  std::map<std::string, std::string> large_;
};

#endif
