#include "tests/faults/named_codes.h"

#include <regex>
#include <set>
#include <sstream>
#include <vector>

#include "filesharing/results.h"
#include "tests/faults/documents.h"

namespace {

/* Reads declarations and the comments before them: a comment stands for all declarations up to the
 * next one, and one with "for all:" for the rest of its section, too. */
class HeaderReader {
 public:
  explicit HeaderReader(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) take(line);
  }

  std::map<std::string, std::string> comments;

 private:
  void take(const std::string& line) {
    if (line.starts_with("/* ----")) section_.clear();
    if (line.starts_with("/*")) comment_.clear();
    if (line.starts_with("/*") || line.starts_with(" *")) {
      comment_ += line.substr(2) + " ";
      if (comment_.find("for all:") != comment_.npos) section_ = comment_;
      return;
    }
    static const std::regex declared("^FSH_API [^(]*[ *]([A-Za-z_0-9]+)\\(");
    std::smatch name;
    if (std::regex_search(line, name, declared)) comments[name[1]] = section_ + comment_;
  }

  std::string comment_;
  std::string section_;
};

const std::map<std::string, std::string>& comments() {
  static const auto all = [] {
    std::map<std::string, std::string> collected;
    for (const auto& [header, text] : kHeaders) collected.merge(HeaderReader(text).comments);
    return collected;
  }();
  return all;
}

/* "FSH_FAILED" to 4294967295. */
const std::map<std::string, unsigned>& code_values() {
  static const auto all = [] {
    std::map<std::string, unsigned> values;
    static const std::regex defined("#define (FSH_[A-Z_]+) \\(?(-?[0-9]+)");
    const std::string& text = kHeaders.at("results");
    for (std::sregex_iterator one(text.begin(), text.end(), defined), end; one != end; ++one) {
      values[(*one)[1]] = static_cast<unsigned>(std::stoll((*one)[2]));
    }
    return values;
  }();
  return all;
}

std::vector<std::string> words(const std::string& text, const char* pattern) {
  const std::regex word(pattern);
  std::vector<std::string> list;
  for (std::sregex_iterator one(text.begin(), text.end(), word), end; one != end; ++one) {
    list.push_back((*one)[1]);
  }
  return list;
}

/* A number's name if it has only one; -1 has several meanings. */
std::string name_of(const std::string& number) {
  const auto value = static_cast<unsigned>(std::stoll(number));
  std::vector<std::string> names;
  for (const auto& [name, code] : code_values()) {
    if (code == value) names.push_back(name);
  }
  if (value == FSH_FAILED) return "-1";
  return names.size() == 1 ? names.front() : number;
}

void collect(const std::string& function, std::map<unsigned, std::string>& codes,
             std::set<std::string>& seen) {
  if (!seen.insert(function).second) return;
  const std::string& comment = comments().at(function);
  for (const std::string& name : words(comment, "(FSH_[A-Z_]+)")) {
    const auto value = code_values().find(name);
    if (value != code_values().end()) codes.emplace(value->second, name);
  }
  for (const std::string& number :
       words(comment, "(?:^|[\\s(])(-?[0-9]+)(?=[:;,).]| when| also| for)")) {
    const auto value = static_cast<unsigned>(std::stoll(number));
    codes.emplace(value, name_of(number));
  }
  if (comment.find("status of") != comment.npos) codes.emplace(256, "256, a tool's status");
  for (const std::string& sentence : words(comment, "([^.;:]+)")) {
    static const std::regex refers("[Rr]esults?\\b|\\bas\\b|code of|failure of|returned");
    if (!std::regex_search(sentence, refers)) continue;
    for (const std::string& name : words(sentence, "\\b([A-Za-z_]{6,})\\b")) {
      if (comments().contains(name)) collect(name, codes, seen);
    }
  }
}

}  // namespace

const std::map<unsigned, std::string>& named_codes(const std::string& function) {
  static std::map<std::string, std::map<unsigned, std::string>> known;
  const auto [entry, is_new] = known.try_emplace(function);
  if (is_new) {
    std::set<std::string> seen;
    entry->second.emplace(FSH_OK, "0");
    collect(function, entry->second, seen);
  }
  return entry->second;
}

const std::map<std::string, std::string>& exported_functions() {
  static const auto all = [] {
    std::map<std::string, std::string> headers;
    for (const auto& [header, names] : kExports) {
      std::istringstream lines(names);
      for (std::string name; std::getline(lines, name);) headers[name] = header + ".h";
    }
    return headers;
  }();
  return all;
}
