/* What the tests of adding, changing and deleting users share. */
#ifndef TESTS_ACCOUNT_TEST_H
#define TESTS_ACCOUNT_TEST_H

#include <cstdio>
#include <functional>
#include <string>

#include "filesharing/users.h"
#include "tests/account_commands.h"
#include "tests/device_test.h"

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

  /* A file with this content makes the call fail; the file and the others are as before. */
  void expect_refused(const std::string& path, const std::string& content, unsigned result,
                      const std::function<unsigned()>& call) {
    SetUp();
    write(path, content);
    const Snapshot before = snapshot();
    EXPECT_EQ(call(), result) << content;
    for (const std::string& change : changes(before)) {
      EXPECT_TRUE(change.ends_with(".ttt") || change.ends_with("quota.tmp")) << change << content;
    }
  }
};

#endif
