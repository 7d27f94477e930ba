// Options that are yes or no, and those that set only what they name.
#ifndef FILESHARE_SWITCHES_H
#define FILESHARE_SWITCHES_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace fileshare {

// Adds an option that takes "yes" or "no"; the target stays empty when it is not given.
inline CLI::Option* add_switch(CLI::App& verb, const std::string& name, std::optional<bool>& target,
                               const std::string& help) {
  return verb
      .add_option_function<std::string>(
          name, [&target](const std::string& text) { target = text == "yes"; }, help)
      ->check(CLI::IsMember({"yes", "no"}));
}

}  // namespace fileshare

#endif
