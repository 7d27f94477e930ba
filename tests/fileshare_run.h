/* The program fileshare, run as a user would. */
#ifndef TESTS_FILESHARE_RUN_H
#define TESTS_FILESHARE_RUN_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/device_test.h"

using Json = nlohmann::json;

struct Refusal {
  Strings arguments;
  int status;
  std::string error; /* behind "fileshare: "; its beginning */
};

class FileshareRun : public DeviceTest {
 protected:
  static Outcome fileshare(Strings arguments, const std::string& input = "") {
    arguments.insert(arguments.begin(), "fileshare");
    return run(arguments, input);
  }

  static Json shown(Strings arguments) {
    arguments.emplace_back("--json");
    return Json::parse(fileshare(arguments).out);
  }

  /* It works and prints this and nothing else. */
  static void expect(const Strings& arguments, const std::string& out = "") {
    const Outcome outcome = fileshare(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, out);
    EXPECT_EQ(outcome.error, "");
  }

  /* Each of them is told and changes nothing but the copies that the library keeps of its files;
   * they are given a password. */
  static void expect_refused(const std::vector<Refusal>& refusals) {
    const Snapshot before = snapshot();
    for (const auto& [arguments, status, error] : refusals) {
      const Outcome outcome = fileshare(arguments, "x\n");
      EXPECT_EQ(outcome.status, status) << outcome.error;
      EXPECT_EQ(outcome.out, "");
      EXPECT_TRUE(outcome.error.starts_with("fileshare: " + error)) << outcome.error << error;
      Strings changed = changes(before);
      std::erase_if(changed, [](const std::string& path) { return path.ends_with(".ttt"); });
      EXPECT_EQ(changed, Strings()) << error;
    }
  }
};

#endif
