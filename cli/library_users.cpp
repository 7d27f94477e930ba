#include "cli/library_users.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>

namespace fileshare {
namespace {

std::string read_of_process(const std::string& process, const char* file) {
  std::ifstream in("/proc/" + process + '/' + file);
  std::ostringstream text;
  text << in.rdbuf();  // a process that has ended meanwhile gives nothing
  return text.str();
}

std::string parent_of(const std::string& process) {
  const std::string stat = read_of_process(process, "stat");
  std::istringstream fields(stat.substr(stat.rfind(')') + 1));  // its name may hold anything
  std::string state;
  std::string parent;
  fields >> state >> parent;
  return parent;
}

std::set<std::string> self_and_ancestors() {
  std::set<std::string> all;
  for (std::string process = std::to_string(getpid()); !process.empty() && process != "0";
       process = parent_of(process)) {
    if (!all.insert(process).second) break;
  }
  return all;
}

bool uses_library(const std::string& process) {
  return read_of_process(process, "maps").find("/libfilesharing.so") != std::string::npos;
}

}  // namespace

std::vector<std::string> other_library_users() {
  const std::set<std::string> own = self_and_ancestors();
  std::vector<std::string> users;
  std::error_code ended;  // processes come and go
  for (const auto& entry : std::filesystem::directory_iterator("/proc", ended)) {
    const std::string process = entry.path().filename().string();
    if (process.find_first_not_of("0123456789") != std::string::npos || own.count(process) != 0) {
      continue;
    }
    if (!uses_library(process)) continue;
    std::string name = read_of_process(process, "comm");
    name.erase(std::min(name.find('\n'), name.size()));
    users.push_back(process + " (" + name + ')');
  }
  return users;
}

}  // namespace fileshare
