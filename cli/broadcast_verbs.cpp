// fileshare broadcast ...: the settings of the music broadcast.
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

// The play method that the daemon knows by name; it mixes for all others.
constexpr std::string_view kInOrder = "order";

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<std::string> name;
  std::optional<int32_t> port;
  std::optional<std::string> folder;
  std::optional<bool> in_order;
};

int read(BroadcastSettings& settings) {
  if (ReadBroadConf(&settings) == 0) return kDone;
  return refuse("can not read the settings of the broadcast: the settings file can not be opened",
                kFailed);
}

int show(const JsonArguments& arguments) {
  BroadcastSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  print_record({{"enabled", settings.enabled != 0},
                {"name", settings.name},
                {"port", settings.port},
                {"folder", settings.path},
                {"in-order", settings.play_method == kInOrder}},
               arguments.json);
  return kDone;
}

int set(const SetArguments& arguments) {
  BroadcastSettings settings{};
  if (arguments.folder && !can_publish(*arguments.folder)) return kFailed;
  if (const int status = read(settings); status != kDone) return status;
  if (arguments.enabled) settings.enabled = *arguments.enabled ? 1 : 0;
  if (arguments.name) fill(settings.name, *arguments.name);
  settings.port = arguments.port.value_or(settings.port);
  if (arguments.folder) fill(settings.path, *arguments.folder);
  if (arguments.in_order) fill(settings.play_method, *arguments.in_order ? kInOrder : "random");
  if (SaveBroadConf(&settings) == 0) return kDone;
  return refuse("can not save the settings of the broadcast: the settings file can not be written",
                kFailed);
}

int apply(const NoArguments& /*none*/) {
  return report("apply the settings of the broadcast", ResetBroadcast(),
                {{FSH_FAILED, "its folder is not there, or the settings file can not be opened"},
                 {FSH_MALFORMED, "its share is gone"},
                 {FSH_SERVICE_NOT_APPLIED, "services or inetd.conf could not be copied back"}});
}

}  // namespace

void add_broadcast_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "broadcast", "Music as a stream");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare broadcast apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether inetd starts the server");
  verb.add_option("--name", arguments.name, "Its name for players; empty for the device's")
      ->check(follows(kMediaServerName));
  verb.add_option("--port", arguments.port, "Port of the stream")->check(CLI::Range(1, 65535));
  verb.add_option("--folder", arguments.folder, "What it publishes: /SHARE or /SHARE/FOLDER")
      ->check(reference_fault);
  add_switch(verb, "--in-order", arguments.in_order, "Whether pieces are played in their order");
  verb.require_option();
  add_verb(group, "apply", "Make ample and inetd follow the settings", apply);
}

}  // namespace fileshare
