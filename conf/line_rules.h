// The files that several services share: each service has its lines there, which are replaced,
// dropped or added, and every other line stays as it is.
#ifndef FILESHARING_CONF_LINE_RULES_H
#define FILESHARING_CONF_LINE_RULES_H

#include <string>
#include <string_view>
#include <vector>

#include "conf/file_rewrite.h"

namespace filesharing {

// What becomes of a line. Of several rules that fit a line the first counts.
struct LineRule {
  std::string mark;       // fits a line that holds it,
  bool at_start = false;  // or, with this, one that begins with it
  std::string line;       // stands in its place, with a line feed; empty: the line is dropped
  int appended = 0;       // 0: never; else, when no line fitted, its place among those appended
};

// The text by the rules. Lines of more than `longest` characters are looked at in pieces of that
// length, each as if it were a line. What is appended begins on a line of its own.
std::string apply_rules(std::string_view text, const std::vector<LineRule>& rules,
                        std::size_t longest = std::string::npos);

// Rewrites a file by rules: FSH_OK, a code of the options, or the failure of copy_back.
Result rewrite_by_rules(const std::string& path, const RewriteOptions& options,
                        const CopyBack& copy_back, const std::vector<LineRule>& rules,
                        std::size_t longest = std::string::npos);

}  // namespace filesharing

#endif
