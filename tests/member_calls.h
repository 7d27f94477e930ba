/* The functions that put users into groups and take them out, called with lists of names as text.
 */
#ifndef TESTS_MEMBER_CALLS_H
#define TESTS_MEMBER_CALLS_H

#include <sstream>
#include <string>
#include <vector>

using MemberFunction = unsigned (*)(const char* name, const char* const* names, int count);

/* names: "alice bob"; "-" stands for an empty name. */
inline unsigned call(MemberFunction function, const char* name, const std::string& names) {
  std::vector<std::string> words;
  std::istringstream stream(names);
  for (std::string word; stream >> word;) words.push_back(word == "-" ? "" : word);
  std::vector<const char*> list;
  for (const std::string& word : words) list.push_back(word.c_str());
  return function(name, list.data(), static_cast<int>(list.size()));
}

#endif
