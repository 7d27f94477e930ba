// Whole operations on hostile files, in a device. Input: calls, one a line, as
//
//   NAME|ARGUMENT|ARGUMENT...
//
// then the files that are not as the factory made them (see changed_files.h). The call "fail|N|S"
// lets the Nth command from then on fail with status S; behind "child" what works detached is done.
#include "conf/text.h"
#include "fuzz/arguments.h"
#include "fuzz/changed_files.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/outside.h"

namespace {

constexpr int kMostCalls = 8;

const fuzz::Operation* find(std::string_view name) {
  for (const auto look_up :
       {fuzz::find_account_operation, fuzz::find_share_operation, fuzz::find_service_operation}) {
    if (const fuzz::Operation* const operation = look_up(name)) return operation;
  }
  return nullptr;
}

void run(std::string_view line) {
  const std::string_view name = filesharing::take_until(line, '|');
  fuzz::Arguments arguments(line);
  if (name == "fail") {
    const int nth = arguments.number();
    fuzz::Outside::fail_command(nth, arguments.number());
  } else if (name == "child") {
    fuzz::Outside::fork_to_child();
  } else if (const fuzz::Operation* const operation = find(name)) {
    const fuzz::Leftovers leftovers(operation->leaves);
    try {
      operation->call(arguments);
    } catch (const fuzz::ProcessEnded&) {
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const fuzz::Outside outside;
  std::string_view calls = fuzz::set_files(input);
  for (int number = 0; number < kMostCalls && !calls.empty(); ++number) {
    run(filesharing::without_line_end(filesharing::take_line(calls)));
  }
  return 0;
}
