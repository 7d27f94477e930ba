// Arguments that nobody should pass: each exported function with each of its texts replaced, and
// with lists that are empty or longer than any other. The sanitizers watch for overruns.
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

class HostileTest : public DeviceTest {
 protected:
  void TearDown() override {
    EXPECT_EQ(unnamed_, Strings()) << "codes that the header does not name";
    DeviceTest::TearDown();
  }

  void prepare(const Operation& operation) {
    SetUp();
    operation.prepare();
    before_ = snapshot();
  }

  void call(const Operation& operation, const Texts& texts, const Strings& list,
            const std::string& what) {
    SCOPED_TRACE(operation.name + what);
    Arguments arguments(texts, list);
    const unsigned code = in_process([&] {
      start_interposing(Interposing::kCommands);
      const unsigned result = operation.call(arguments);
      stop_interposing();
      return result;
    });
    stop_interposing();
    wait_for_background();
    restore(before_);
    const bool named = operation.counts || named_codes(operation.name).contains(code);
    if (!named) unnamed_.push_back(operation.name + what + " returns " + std::to_string(code));
  }

 private:
  Snapshot before_;
  Strings unnamed_;
};

TEST_F(HostileTest, TextsAreTakenOrRefused) {
  for (const Operation& operation : operations()) {
    prepare(operation);
    for (size_t number = 0; number < operation.texts.size(); ++number) {
      for (const Text& text : kHostile) {
        Texts texts = operation.texts;
        texts[number] = text;
        call(operation, texts, operation.list,
             " of text " + std::to_string(number) + " " + text.value_or("missing").substr(0, 20));
      }
    }
  }
}

TEST_F(HostileTest, ListsAreTakenOrRefused) {
  Strings names;
  for (int number = 0; number < 300; ++number) names.push_back("name" + std::to_string(number));
  for (const Operation& operation : operations()) {
    if (operation.list.empty()) continue;
    prepare(operation);
    for (const Strings& list :
         {Strings(), Strings(names.begin(), names.begin() + 255), names,
          Strings(255, operation.list.front()), Strings(2, std::string(kLong, 'x')), Strings(3)}) {
      call(operation, operation.texts, list, " of " + std::to_string(list.size()));
    }
  }
}

}  // namespace
