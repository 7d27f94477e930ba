#include "cli/names.h"

#include <algorithm>

#include "cli/utf8.h"

namespace fileshare {
namespace {

// "-" makes a tool take the name for an option, "." a folder hidden or its own parent; the C
// library skips account lines that begin with "#" or "+", and Samba takes "@", "+" and "&" for
// groups.
constexpr std::string_view kNeverFirst = "-.#+@&";

bool has_control(std::string_view text) {
  while (!text.empty()) {
    const Utf8Character next = first_character(text);
    if (is_control(next.value)) return true;
    text.remove_prefix(next.size);
  }
  return false;
}

// What is wrong with a text, to go behind "a user name".
std::string text_fault(std::string_view text, const TextRule& rule) {
  if (text.size() > rule.longest) {
    return "is " + std::to_string(rule.longest) + " bytes long at most, this is " +
           std::to_string(text.size());
  }
  if (!is_valid_utf8(text)) return "has to be valid UTF-8";
  if (has_control(text)) return "can not contain control characters";
  const std::size_t found = text.find_first_of(rule.refused);
  if (found == std::string_view::npos) return {};
  const std::string character(1, text[found]);
  return "can not contain " + (character == "\"" ? "'\"'" : '"' + character + '"');
}

// What only names are refused for.
std::string name_fault(std::string_view name) {
  if (name.empty()) return "can not be empty";
  if (kNeverFirst.find(name.front()) != std::string_view::npos) {
    return std::string("can not begin with \"") + name.front() + '"';
  }
  // The readers of member lists drop these.
  if (name.front() == ' ' || name.back() == ' ') return "can not begin or end with a blank";
  return {};
}

bool leads_up(const std::string& path) {
  return (path + '/').find("/../") != std::string::npos;
}

}  // namespace

std::string fault_of(std::string_view text, const TextRule& rule) {
  std::string fault = rule.is_name ? name_fault(text) : std::string();
  if (fault.empty()) fault = text_fault(text, rule);
  return fault.empty() ? fault : std::string(rule.what) + ' ' + fault;
}

std::string folder_fault(const std::string& path) {
  if (path.empty() || path.front() != '/') return "a folder has to begin with \"/\"";
  if (leads_up(path)) return "a folder can not contain \"..\"";
  return fault_of(path, kFolder);
}

std::function<std::string(const std::string&)> follows(const TextRule& rule) {
  return [rule](const std::string& text) { return fault_of(text, rule); };
}

CLI::Option* add_name(CLI::App& verb, std::string& target, const char* metavar, const char* help,
                      const TextRule& rule) {
  return verb.add_option(metavar, target, help)->required()->check(follows(rule));
}

}  // namespace fileshare
