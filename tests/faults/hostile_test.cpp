// Arguments that nobody should pass: each exported function with each of its texts replaced, and
// with lists that are empty or longer than any other. The sanitizers watch for overruns.
#include <unistd.h>

#include <cstdio>

#include "tests/device_test.h"
#include "tests/faults/interposed.h"
#include "tests/faults/named_codes.h"
#include "tests/faults/operations.h"

namespace {

constexpr size_t kLong = 10000;

std::string control_characters() {
  std::string all;
  for (char c = 1; c < ' '; ++c) all += c;
  return all + '\x7f';
}

const Texts kHostile{
    std::nullopt,
    "",
    std::string(kLong, 'x'),
    "/" + std::string(kLong, 'x') + "/" + std::string(kLong, '/'),
    ":::::,,,,,=====",
    "//////////",
    "          ",
    control_characters(),
    "\xff\xfe\xc3(\xe2\x82\xed\xa0\x80\xf8",
    "\"`$(';|&<>*?[]{}~!#%s%n\\",
    "../../../..",
};

/* The arguments of one call. */
struct Call {
  Texts texts;
  Strings list;
};

class HostileTest : public DeviceTest {
 protected:
  /* Makes the calls one after another in one process, which a leak check of its own ends. */
  void make(const Operation& operation, const std::vector<Call>& calls) {
    SCOPED_TRACE(operation.name);
    SetUp();
    operation.prepare();
    (void)named_codes(operation.name); /* read once, not by each process */
    unnamed_ += in_process([&] {
      unsigned unnamed = 0;
      for (const Call& call : calls) unnamed += returns_named_code(operation, call) ? 0 : 1;
      return unnamed;
    });
    stop_interposing();
    wait_for_background();
  }

  unsigned unnamed_ = 0;

 private:
  static bool returns_named_code(const Operation& operation, const Call& call) {
    const pid_t self = getpid();
    Arguments arguments(call.texts, call.list);
    start_interposing(Interposing::kCommands);
    const unsigned code = operation.call(arguments);
    if (getpid() != self) _exit(0); /* a background process that came back */
    stop_interposing();
    const bool named = operation.counts || named_codes(operation.name).contains(code);
    if (!named) std::printf("%s returns %u:", operation.name.c_str(), code);
    for (const Text& text : call.texts) {
      if (!named) std::printf(" %.20s", text.value_or("missing").c_str());
    }
    return named;
  }
};

TEST_F(HostileTest, TextsAreTakenOrRefused) {
  for (const Operation& operation : operations()) {
    std::vector<Call> calls;
    for (size_t number = 0; number < operation.texts.size(); ++number) {
      for (const Text& text : kHostile) {
        calls.push_back({operation.texts, operation.list});
        calls.back().texts[number] = text;
      }
    }
    make(operation, calls);
  }
  EXPECT_EQ(unnamed_, 0u) << "codes that the header does not name";
}

TEST_F(HostileTest, ListsAreTakenOrRefused) {
  Strings names;
  for (int number = 0; number < 300; ++number) names.push_back("name" + std::to_string(number));
  for (const Operation& operation : operations()) {
    if (operation.list.empty()) continue;
    make(operation, {{operation.texts, {}},
                     {operation.texts, Strings(names.begin(), names.begin() + 255)},
                     {operation.texts, names},
                     {operation.texts, Strings(255, operation.list.front())},
                     {operation.texts, Strings(2, std::string(kLong, 'x'))},
                     {operation.texts, Strings(3)}});
  }
  EXPECT_EQ(unnamed_, 0u) << "codes that the header does not name";
}

}  // namespace
