/* What the tests of adding, changing and deleting users share. */
#ifndef TESTS_ACCOUNT_TEST_H
#define TESTS_ACCOUNT_TEST_H

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/device_test.h"

struct Fault {
  std::function<void()> make;
  unsigned result;
  std::string last;  /* the step that failed or the one before it; the restore comes next */
  Strings more = {}; /* what changed besides the backups */
};

class AccountTest : public DeviceTest {
 protected:
  static UserInfo user(const char* name, const char* password = "word-77", unsigned quota = 250,
                       int uid = 0) {
    UserInfo record{};
    (void)std::snprintf(record.name, sizeof record.name, "%s", name);
    (void)std::snprintf(record.description, sizeof record.description, "Dave Miller");
    (void)std::snprintf(record.password, sizeof record.password, "%s", password);
    record.quota = quota;
    record.uid = uid;
    return record;
  }

  /* What a call changes that fails after its backup of the files, in order of the paths. */
  static Strings left_by(const Strings& files, const Strings& more = {}) {
    Strings left = joined({backups_left(files), more});
    std::ranges::sort(left, {}, [](const std::string& change) { return change.substr(1); });
    return left;
  }

  /* Each fault on a new device makes the call fail, restore the files and give the locks back. */
  void expect_restored(const Strings& files, const std::vector<Fault>& faults,
                       const std::function<unsigned()>& call) {
    for (const Fault& fault : faults) {
      SCOPED_TRACE(&fault - faults.data());
      SetUp();
      fault.make();
      const Snapshot before = snapshot();
      EXPECT_EQ(call(), fault.result);
      EXPECT_EQ(changes(before), left_by(files, fault.more));
      const Strings end = joined({{fault.last}, restore_of(files)});
      EXPECT_EQ(last_of(commands(), end.size()), end);
    }
  }
};

#endif
