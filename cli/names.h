// Which names and texts fileshare lets through to the account and configuration files.
//
// The files are lines of fields, and the library runs command lines; it takes its arguments as they
// are. So what would break a line, a list, a section or a command is refused here.
#ifndef FILESHARE_NAMES_H
#define FILESHARE_NAMES_H

#include <CLI/CLI.hpp>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace fileshare {

struct TextRule {
  const char* what;          // "a user name", for the refusal
  std::size_t longest;       // bytes
  std::string_view refused;  // characters, besides all control characters
  bool is_name = true;  // not empty; no "-", ".", "#", "+", "@", "&" first; no blank first or last
};

inline constexpr std::string_view kNameRefuses = ":,=/[]\"'$\\`";
inline constexpr TextRule kUserName{"a user name", 20, kNameRefuses};
inline constexpr TextRule kGroupName{"a group name", 20, kNameRefuses};
inline constexpr TextRule kShareName{"a share name", 20, kNameRefuses};
inline constexpr TextRule kDescription{"a description", 48, ":", false};
inline constexpr TextRule kComment{"a comment", 48, ":", false};
inline constexpr TextRule kFolder{"a folder", 255, ":\"'$\\`", false};

// Why the text can not be used, such as: a user name can not contain ":". Empty when it can.
std::string fault_of(std::string_view text, const TextRule& rule);

// The same for a folder, which also begins with "/" and never leads up with "..".
std::string folder_fault(const std::string& path);

// The check of an option of CLI11; a refused text is a usage error.
//   verb.add_option("--comment", ...)->check(follows(kComment));
//   verb.add_option("FOLDER", ...)->required()->check(folder_fault);
std::function<std::string(const std::string&)> follows(const TextRule& rule);

// Adds a required name, such as NAME, that follows the rule.
CLI::Option* add_name(CLI::App& verb, std::string& target, const char* metavar, const char* help,
                      const TextRule& rule);

}  // namespace fileshare

#endif
