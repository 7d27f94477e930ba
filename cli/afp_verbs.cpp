// fileshare afp ...: the settings of the server for Macs.
#include <optional>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/services.h"
#include "filesharing/shares.h"

namespace fileshare {
namespace {

// They stand in the daemon's one line of options, where a blank ends them and quotes join them; the
// line is not written through a shell.
constexpr std::string_view kTokenRefuses = " :@#,;/=[]\"'$\\`";
constexpr TextRule kServerName{"a server name", 64, kTokenRefuses};
constexpr TextRule kCodePage{"a code page", 64, kTokenRefuses};

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<bool> guests;
  std::optional<std::string> name;
  std::optional<std::string> code_page;
  std::optional<std::string> time_machine;
};

// Empty stands for the default, or for none.
std::function<std::string(const std::string&)> empty_or(const TextRule& rule) {
  return [rule](const std::string& text) { return text.empty() ? text : fault_of(text, rule); };
}

int read(AfpSettings& settings) {
  return report("read the settings of AFP", ReadAFPConf(&settings),
                {{FSH_AFP_SETTINGS_UNREADABLE, "the settings file or one of its keys is missing"}});
}

int show(const JsonArguments& arguments) {
  AfpSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  print_record({{"enabled", settings.enabled != 0},
                {"guests", settings.anonymous != 0},
                {"name", settings.name},
                {"code-page", settings.unixcode},
                {"mac-code-page", settings.maccode},
                {"time-machine", settings.tm_share}},
               arguments.json);
  return kDone;
}

// In this letter case: the deletion of a share withdraws its advertisement only then.
bool is_share(const std::string& name) {
  ShareNameItem* names = nullptr;
  if (GetShareNameList(&names) != FSH_OK) return false;
  const ShareNameItem* item = names;
  while (item != nullptr && item->name != name) item = item->next;
  const bool found = item != nullptr;
  FreeShareNameList(names);
  return found;
}

template <std::size_t N>
void change(char (&field)[N], const std::optional<std::string>& text) {
  if (text) fill(field, *text);
}

int set(const SetArguments& arguments) {
  const std::string share = arguments.time_machine.value_or("");
  if (!share.empty() && !is_share(share)) {
    return refuse("can not save the settings of AFP: time-machine: there is no share " +
                      in_quotes(share) + " in this letter case",
                  kFailed);
  }
  AfpSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  settings.enabled = arguments.enabled.value_or(settings.enabled != 0) ? 1 : 0;
  settings.anonymous = arguments.guests.value_or(settings.anonymous != 0) ? 1 : 0;
  change(settings.name, arguments.name);
  change(settings.unixcode, arguments.code_page);
  change(settings.tm_share, arguments.time_machine);
  return report("save the settings of AFP", static_cast<unsigned>(SaveAFPConf(&settings)),
                {{FSH_AFP_NOT_SAVED, "the settings file can not be written"}});
}

// The background process may come out of ResetAFP, too; with its streams closed it only ends.
int apply(const NoArguments& /*none*/) {
  return report("apply the settings of AFP", ResetAFP(),
                {{FSH_AFP_NOT_RESET, "the settings file or one of its keys is missing"}});
}

void add_set(CLI::App& group) {
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare afp apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether Macs are served");
  add_switch(verb, "--guests", arguments.guests, "Whether they need no account");
  verb.add_option("--name", arguments.name, "Name of the server, empty for the device's")
      ->check(empty_or(kServerName));
  verb.add_option("--code-page", arguments.code_page, "Code page of the files, such as UTF8")
      ->check(empty_or(kCodePage));
  verb.add_option("--time-machine", arguments.time_machine,
                  "Share that Macs back up to, empty for none")
      ->check(empty_or(kShareName));
  verb.require_option();
}

}  // namespace

void add_afp_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "afp", "File service for Macs");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  add_set(group);
  add_verb(group, "apply", "Make afpd and what the network is told follow the settings", apply);
}

}  // namespace fileshare
