#include "cli/failure.h"

#include <algorithm>
#include <iostream>

#include "cli/utf8.h"
#include "filesharing/results.h"

namespace fileshare {
namespace {

constexpr Reason kSharedReasons[] = {
    {FSH_ARGUMENT, "an argument is missing or empty"},
    {FSH_CANNOT_OPEN, "a file can not be opened"},
    {FSH_NO_TEMPORARY, "no temporary file can be made"},
    {FSH_NO_MEMORY, "out of memory"},
    {FSH_MALFORMED, "a line or an entry in a file is malformed"},
    {FSH_COPY_BACK_FAILED, "the changed file could not be copied back"},
};

const char* words_in(const Reason* first, const Reason* last, unsigned code) {
  const auto* const found =
      std::find_if(first, last, [code](const Reason& reason) { return reason.code == code; });
  return found == last ? nullptr : found->words;
}

const char* words_for(unsigned code, std::initializer_list<Reason> reasons) {
  if (const char* own = words_in(reasons.begin(), reasons.end(), code)) return own;
  if (const char* shared = words_in(std::begin(kSharedReasons), std::end(kSharedReasons), code)) {
    return shared;
  }
  return "it failed";
}

}  // namespace

int report(std::string_view operation, unsigned code, std::initializer_list<Reason> reasons) {
  if (code == FSH_OK) return kDone;
  std::cout.flush();  // what was printed before comes before the error
  // Codes from -1 down travel as large unsigned numbers.
  std::cerr << "fileshare: can not " << operation << ": " << words_for(code, reasons) << " (code "
            << static_cast<int>(code) << ")\n";
  return kFailed;
}

int refuse(std::string_view message, ExitStatus status) {
  std::cout.flush();
  std::cerr << "fileshare: " << message << '\n';
  return status;
}

std::string in_quotes(std::string_view name) {
  return '"' + printable(name) + '"';
}

}  // namespace fileshare
