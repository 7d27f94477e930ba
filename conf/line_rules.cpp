#include "conf/line_rules.h"

#include <algorithm>

#include "conf/line_reader.h"
#include "conf/text.h"

namespace filesharing {

namespace {

bool fits(const LineRule& rule, std::string_view line) {
  return rule.at_start ? line.starts_with(rule.mark)
                       : line.find(rule.mark) != std::string_view::npos;
}

void append_lines(std::string& text, std::vector<const LineRule*> rules) {
  std::ranges::stable_sort(rules, {}, &LineRule::appended);
  for (const LineRule* rule : rules) {
    if (!rule->line.empty()) {
      end_last_line(text);
    }
    text += rule->line;
  }
}

}  // namespace

std::string apply_rules(std::string_view text, const std::vector<LineRule>& rules,
                        std::size_t longest) {
  std::vector<const LineRule*> unused;
  for (const LineRule& rule : rules) {
    if (rule.appended != 0) {
      unused.push_back(&rule);
    }
  }
  std::string result;
  for (PieceReader piece(text, longest); piece.next();) {
    const auto rule = std::ranges::find_if(
        rules, [&](const LineRule& candidate) { return fits(candidate, piece.text()); });
    if (rule == rules.end()) {
      result += piece.text();
    } else {
      result += rule->line;
      std::erase(unused, &*rule);
    }
  }
  append_lines(result, std::move(unused));
  return result;
}

Result rewrite_by_rules(const std::string& path, const RewriteOptions& options,
                        const CopyBack& copy_back, const std::vector<LineRule>& rules,
                        std::size_t longest) {
  return rewrite_text(path, options, copy_back,
                      [&](std::string_view text) { return apply_rules(text, rules, longest); });
}

}  // namespace filesharing
