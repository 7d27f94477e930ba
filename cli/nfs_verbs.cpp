// fileshare nfs ...: the switch and the exports of the server for Unix clients.
#include <iostream>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "filesharing/shares.h"

namespace fileshare {
namespace {

struct SetArguments {
  std::string state;
};

int read_entries(Json& entries) {
  NfsShare* head = nullptr;
  const unsigned code = ReadNFSShares(&head);
  if (code == FSH_CANNOT_OPEN) return kDone;  // a server without entries has no file of them
  if (code != FSH_OK) {
    return report("list the entries of NFS", code,
                  {{FSH_FAILED, "a line of /etc/nfs.info is no entry"}});
  }
  for (const NfsShare* entry = head; entry != nullptr; entry = entry->next) {
    Json host;  // null for every host
    if (entry->host[0] != '\0') host = entry->host;
    entries.push_back(
        {{"name", entry->name}, {"host", host}, {"mask", entry->mask}, {"flags", entry->flags}});
  }
  FreeNFSShList(head);
  return kDone;
}

int show(const JsonArguments& arguments) {
  Json entries = Json::array();
  if (const int status = read_entries(entries); status != kDone) return status;
  Json shown{{"enabled", IsNFSEnabled() != 0}};
  if (arguments.json) {
    shown["entries"] = std::move(entries);
    print_record(shown, true);
    return kDone;
  }
  print_record(shown, false);
  if (!entries.empty()) {
    std::cout << '\n';
    print_list(entries, {"name", "host", "mask", "flags"}, false);
  }
  return kDone;
}

int set(const SetArguments& arguments) {
  const unsigned on = arguments.state == "on" ? 1 : 0;
  if (SaveNFSConf(&on) == 0) return kDone;
  return refuse("can not switch NFS " + arguments.state + ": the settings file can not be written",
                kFailed);
}

int apply(const NoArguments& /*none*/) {
  return report("write the exports", UpdateNFSConf(nullptr),
                {{FSH_FAILED, "there is no share, or a file can not be read or written"}});
}

}  // namespace

void add_nfs_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "nfs", "File service for Unix clients");
  auto& shown = add_verb(group, "show", "Show the switch, and the entries of /etc/nfs.info", show);
  add_json(shown, shown.arguments.json);
  auto& changed = add_verb(group, "set", "Switch the service on or off", set);
  changed.footer(
      "On, its daemons are started in the background; off, the exports are withdrawn and the\n"
      "daemons go on running.");
  changed.add_option("STATE", changed.arguments.state, "on or off")
      ->required()
      ->check(CLI::IsMember({"on", "off"}));
  auto& applied = add_verb(group, "apply", "Export the shares that everyone may use", apply);
  applied.footer("/etc/exports is written whether the service is on or off.");
}

}  // namespace fileshare
