/* The copy commands that account operations run, as commands() of the fixture tells them. */
#ifndef TESTS_ACCOUNT_COPIES_H
#define TESTS_ACCOUNT_COPIES_H

#include <string>
#include <vector>

#include "tests/device_test.h"

inline Strings copied(const std::string& from, const std::string& to, int times) {
  return Strings(static_cast<size_t>(times), "/bin/cp [-f] [" + from + "] [" + to + "]");
}

/* A rewritten file that is put in its place. */
inline Strings replaced(const std::string& path, int times) {
  return copied("/harddisk/volume_1/conf//tmp/tmpfile.XXXXXX", path, times);
}

inline Strings backed_up(const std::string& name) {
  return copied("/harddisk/volume_1/conf/" + name, "/harddisk/volume_1/conf/" + name + ".ttt", 2);
}

inline Strings restored(const std::string& name) {
  return copied("/harddisk/volume_1/conf/" + name + ".ttt", "/harddisk/volume_1/conf/" + name, 2);
}

inline Strings joined(const std::vector<Strings>& parts) {
  Strings all;
  for (const Strings& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

#endif
