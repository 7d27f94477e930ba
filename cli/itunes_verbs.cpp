// fileshare itunes ...: the settings of the iTunes server.
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
  std::optional<std::string> folder;
};

int read(ITunesSettings& settings) {
  if (ReadiTuneConf(&settings) == 0) return kDone;
  return refuse("can not read the settings of iTunes: the settings file can not be opened",
                kFailed);
}

int show(const JsonArguments& arguments) {
  ITunesSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  print_record(
      {{"enabled", settings.enabled != 0}, {"name", settings.name}, {"folder", settings.path}},
      arguments.json);
  return kDone;
}

int set(const SetArguments& arguments) {
  ITunesSettings settings{};
  if (arguments.folder && !can_publish(*arguments.folder)) return kFailed;
  if (const int status = read(settings); status != kDone) return status;
  if (arguments.enabled) settings.enabled = *arguments.enabled ? 1 : 0;
  if (arguments.name) fill(settings.name, *arguments.name);
  if (arguments.folder) fill(settings.path, *arguments.folder);
  if (SaveiTuneConf(&settings) == 0) return kDone;
  return refuse("can not save the settings of iTunes: the settings file can not be written",
                kFailed);
}

int apply(const NoArguments& /*none*/) {
  return report("apply the settings of iTunes", static_cast<unsigned>(ResetItune()),
                {{FSH_FAILED, "its folder is not there, or a file can not be read or written"},
                 {FSH_MALFORMED, "its share is gone"}});
}

}  // namespace

void add_itunes_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "itunes", "Music for iTunes players");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare itunes apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether the server runs");
  verb.add_option("--name", arguments.name, "Its name for players; empty for the device's")
      ->check(follows(kMediaServerName));
  verb.add_option("--folder", arguments.folder, "What it publishes: /SHARE or /SHARE/FOLDER")
      ->check(reference_fault);
  verb.require_option();
  add_verb(group, "apply", "Make mt-daapd follow the settings", apply);
}

}  // namespace fileshare
