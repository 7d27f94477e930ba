/* The commands of a transaction over the account files of volume 1, for comparison with
 * DeviceTest::commands. */
#ifndef TESTS_ACCOUNT_COMMANDS_H
#define TESTS_ACCOUNT_COMMANDS_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/device_test.h"

inline Strings joined(const std::vector<Strings>& lists) {
  Strings all;
  for (const Strings& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

inline Strings copied(const std::string& from, const std::string& to, int times) {
  return Strings(static_cast<size_t>(times), "/bin/cp [-f] [" + from + "] [" + to + "]");
}

/* A rewritten file that is put in its place. */
inline Strings replaced(const std::string& path, int times) {
  return copied("/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX", path, times);
}

inline std::string copy_back_to(const std::string& path) {
  return replaced(path, 1).front();
}

inline Strings backed_up(const std::string& name) {
  return copied("/harddisk/volume_1/conf/" + name, "/harddisk/volume_1/conf/" + name + ".ttt", 2);
}

inline Strings restored(const std::string& name) {
  return copied("/harddisk/volume_1/conf/" + name + ".ttt", "/harddisk/volume_1/conf/" + name, 2);
}

inline Strings backup_of(const Strings& names) {
  Strings all;
  for (const std::string& name : names) all = joined({all, backed_up(name)});
  return all;
}

inline Strings restore_of(const Strings& names) {
  Strings all;
  for (const std::string& name : names) all = joined({all, restored(name)});
  return all;
}

/* As many of the last commands as are looked at. */
inline Strings last_of(const Strings& all, size_t count) {
  return Strings(all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())), all.end());
}

#endif
