// fileshare upnp ...: the settings of the UPnP AV server.
#include <optional>

#include "cli/failure.h"
#include "cli/media_folder.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/media.h"

namespace fileshare {
namespace {

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<std::string> name;
  std::optional<bool> rescan;
  std::optional<uint32_t> rescan_interval;
  std::optional<int32_t> slot;
  std::optional<std::string> folder;
  std::optional<int32_t> content;
};

struct ApplyArguments {
  bool keep_database = false;
};

int read(UPnPAVSettings& settings) {
  if (ReadUPnPAVConf(&settings) == 0) return kDone;
  return refuse("can not read the settings of UPnP AV: the settings file can not be opened",
                kFailed);
}

Json folders_of(const UPnPAVSettings& settings) {
  Json folders = Json::array();
  for (int slot = 0; slot < FSH_MEDIA_FOLDERS; ++slot) {
    if (settings.folder_used[slot] == 0) continue;
    folders.push_back({{"slot", slot + 1},
                       {"folder", settings.folder_path[slot]},
                       {"content", settings.content_type[slot]}});
  }
  return folders;
}

int show(const JsonArguments& arguments) {
  UPnPAVSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  Json record = {{"enabled", settings.enabled != 0},
                 {"name", settings.name},
                 {"rescan", settings.content_scan != -1},
                 {"rescan-interval", settings.scan_interval}};
  const Json folders = folders_of(settings);
  if (arguments.json) record["folders"] = folders;
  print_record(record, arguments.json);
  if (!arguments.json) print_list(folders, {"slot", "folder", "content"}, false);
  return kDone;
}

void change_slot(UPnPAVSettings& settings, const SetArguments& arguments) {
  const int slot = *arguments.slot - 1;
  if (arguments.folder) {
    settings.folder_used[slot] = arguments.folder->empty() ? 0 : 1;
    fill(settings.folder_share[slot], share_of(*arguments.folder));
    fill(settings.folder_path[slot], *arguments.folder);
  }
  settings.content_type[slot] = arguments.content.value_or(settings.content_type[slot]);
}

int set(const SetArguments& arguments) {
  UPnPAVSettings settings{};
  if (arguments.folder && !can_publish(*arguments.folder)) return kFailed;
  if (const int status = read(settings); status != kDone) return status;
  if (arguments.enabled) settings.enabled = *arguments.enabled ? 1 : 0;
  if (arguments.name) fill(settings.name, *arguments.name);
  if (arguments.rescan) settings.content_scan = *arguments.rescan ? 0 : -1;
  settings.scan_interval = arguments.rescan_interval.value_or(settings.scan_interval);
  if (arguments.slot) change_slot(settings, arguments);
  if (SaveUPnPAVConf(&settings) == 0) return kDone;
  return refuse("can not save the settings of UPnP AV: the settings file can not be written",
                kFailed);
}

int apply(const ApplyArguments& arguments) {
  return report("apply the settings of UPnP AV",
                static_cast<unsigned>(ResetUPnPAV(arguments.keep_database ? 1 : 0)),
                {{FSH_FAILED, "the settings file can not be opened"}});
}

void add_set(CLI::App& group) {
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare upnp apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether the server runs");
  verb.add_option("--name", arguments.name, "Its name for players; empty for the device's")
      ->check(follows(kMediaServerName));
  add_switch(verb, "--rescan", arguments.rescan,
             "Whether folders are looked through by themselves");
  verb.add_option("--rescan-interval", arguments.rescan_interval,
                  "How often, as the server counts");
  auto* slot = verb.add_option("--slot", arguments.slot, "Which of the four folders is changed")
                   ->check(CLI::Range(1, FSH_MEDIA_FOLDERS));
  verb.add_option("--folder", arguments.folder,
                  "What it publishes: /SHARE or /SHARE/FOLDER; empty for nothing")
      ->check(reference_fault)
      ->needs(slot);
  verb.add_option("--content", arguments.content,
                  "Of its files: 0 all, 1 music, 2 pictures, 3 video")
      ->check(CLI::Range(0, 3))
      ->needs(slot);
  verb.require_option();
}

}  // namespace

void add_upnp_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "upnp", "Music, pictures and video for UPnP AV players");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  add_set(group);
  auto& applied = add_verb(group, "apply", "Make the server follow the settings", apply);
  applied.add_flag("--keep-database", applied.arguments.keep_database,
                   "Do not look through the folders anew");
}

}  // namespace fileshare
