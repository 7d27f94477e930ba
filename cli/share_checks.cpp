#include "cli/share_checks.h"

#include <strings.h>

#include "cli/failure.h"
#include "cli/names.h"

namespace fileshare {

std::string new_share_name_fault(const std::string& name) {
  for (const char* section : {"global", "homes", "printers"}) {
    if (strcasecmp(name.c_str(), section) == 0) {
      return "a share can not be called " + in_quotes(name) + ": Samba has a section of that name";
    }
  }
  return fault_of(name, kShareName);
}

std::string removal_fault(const std::string& path) {
  constexpr TextRule kOneWord{"a folder to be removed", kFolder.longest, " \"'$\\`*?[]{}()<>|;&~#!",
                              false};
  if (path.find_first_not_of("/.") == std::string::npos) {
    return "its folder is the volume's whole data folder";
  }
  std::string fault = folder_fault(path);
  return fault.empty() ? fault_of(path, kOneWord) : fault;
}

}  // namespace fileshare
