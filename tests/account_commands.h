/* The commands of a transaction over the account files of volume 1, for comparison with
 * DeviceTest::commands. */
#ifndef TESTS_ACCOUNT_COMMANDS_H
#define TESTS_ACCOUNT_COMMANDS_H

#include <string>
#include <vector>

#include "tests/device_test.h"

inline Strings joined(const std::vector<Strings>& lists) {
  Strings all;
  for (const Strings& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

inline Strings copied_twice(const Strings& names, const char* from, const char* to) {
  Strings list;
  for (const std::string& name : names) {
    const std::string path = "/harddisk/volume_1/conf/" + name;
    const std::string command = "/bin/cp [-f] [" + path + from + "] [" + path + to + "]";
    list.insert(list.end(), {command, command});
  }
  return list;
}

inline Strings backup_of(const Strings& names) {
  return copied_twice(names, "", ".ttt");
}

inline Strings restore_of(const Strings& names) {
  return copied_twice(names, ".ttt", "");
}

/* The new files that the backup leaves, as DeviceTest::changes lists them. */
inline Strings backups_left(const Strings& names) {
  Strings list;
  for (const std::string& name : names) list.push_back("+/harddisk/volume_1/conf/" + name + ".ttt");
  return list;
}

inline std::string copy_back_to(const std::string& path) {
  return "/bin/cp [-f] [/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX] [" + path + "]";
}

#endif
