// fileshare lock ...: lock files that a process left behind when it died.
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "cli/failure.h"
#include "cli/guarded_files.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "filesharing/conf.h"

namespace fileshare {
namespace {

struct ClearArguments {
  std::vector<std::string> names;
};

std::string time_taken(const GuardedFile& file) {
  struct stat status {};
  tm local{};
  char text[sizeof "2000-01-01 00:00:00"] = "";
  if (lstat(file.lock_path, &status) != 0) return text;
  if (localtime_r(&status.st_mtime, &local) == nullptr) return text;
  (void)std::strftime(text, sizeof text, "%F %T", &local);  // a year of five digits gives ""
  return text;
}

int list_locks(const JsonArguments& arguments) {
  Json locks = Json::array();
  for (const GuardedFile& file : guarded_files()) {
    if (!is_taken(file)) continue;
    locks.push_back({{"lock", file.name},
                     {"file", file.lock_path},
                     {"since", time_taken(file)},
                     {"guards", file.guards}});
  }
  print_list(locks, {"lock", "file", "since", "guards"}, arguments.json);
  return kDone;
}

int clear_locks(const ClearArguments& arguments) {
  int status = kDone;
  for (const GuardedFile& file : guarded_files()) {
    if (!is_chosen(file, arguments.names) || !is_taken(file)) continue;
    if (clear_lock(file) != kDone) status = kFailed;
  }
  return status;
}

}  // namespace

void add_lock_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "lock", "Lock files that keep changes apart");
  auto& list = add_verb(group, "list", "List the locks that are taken", list_locks);
  add_json(list, list.arguments.json);
  auto& clear = add_verb(group, "clear", "Remove locks that a process left behind", clear_locks);
  clear.footer("Make sure that nothing is at work on the files: locks carry no owner.");
  add_guarded_names(clear, clear.arguments.names, "Which locks; all when none is named", false);
}

}  // namespace fileshare
