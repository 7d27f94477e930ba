// fileshare samba ...: the settings of the server for Windows clients.
#include <optional>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/services.h"

namespace fileshare {
namespace {

// Which characters a workgroup or a printer can not have is the library's to say.
constexpr TextRule kWorkgroup{"a workgroup", 16, "", false};
constexpr TextRule kWinsServer{"a WINS server", 16, "", false};
constexpr TextRule kPrinter{"a printer", 20, "", false};

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<std::string> workgroup;
  std::optional<int32_t> code_page;
  std::optional<bool> wins;
  std::optional<std::string> wins_server;
  std::optional<std::string> printer;
};

int report_unreadable(unsigned code) {
  return report(
      "read the settings of Samba", code,
      {{FSH_SAMBA_SETTINGS_UNREADABLE, "the settings file or one of its keys is missing"}});
}

int report_saved(unsigned code) {
  return report(
      "save the settings of Samba", code,
      {{FSH_BAD_SAMBA_SWITCH, "enabled: it is neither yes nor no"},
       {FSH_BAD_WORKGROUP, "workgroup: it can not contain any of \"/\\[]:;|=.,+*?<>"},
       {FSH_WORKGROUP_MULTIBYTE, "workgroup: it can only contain ASCII characters"},
       {FSH_WORKGROUP_MISSING, "workgroup: it can not be empty while Samba is on"},
       {FSH_BAD_WINS_SWITCH, "wins: it is neither yes nor no"},
       {FSH_BAD_WINS_SERVER, "wins-server: this is not the address of a server"},
       {FSH_WINS_SERVER_MISSING, "wins-server: it can not be empty while WINS is used"},
       {FSH_BAD_PRINTER_NAME, "printer: it can not contain a blank or any of \"/\\[]:;|=.,+*?<>'`"},
       {FSH_PRINTER_NAME_MULTIBYTE, "printer: it can only contain ASCII characters"},
       {FSH_SAMBA_SETTINGS_NOT_SAVED,
        "another process is at it, or the settings file can not be written"}});
}

int show(const JsonArguments& arguments) {
  SambaSettings settings{};
  if (const unsigned code = ReadSambaConf(&settings); code != FSH_OK) {
    return report_unreadable(code);
  }
  print_record({{"enabled", std::string_view(settings.msn_enable) == "yes"},
                {"workgroup", settings.w_d_name},
                {"code-page", settings.code_page},
                {"wins", std::string_view(settings.wins_enable) == "yes"},
                {"wins-server", settings.wins_server},
                {"printer", settings.printer_name}},
               arguments.json);
  return kDone;
}

template <std::size_t N>
void change(char (&field)[N], const std::optional<bool>& on) {
  if (on) fill(field, *on ? "yes" : "no");
}

template <std::size_t N>
void change(char (&field)[N], const std::optional<std::string>& text) {
  if (text) fill(field, *text);
}

int set(const SetArguments& arguments) {
  SambaSettings settings{};
  if (const unsigned code = ReadSambaConf(&settings); code != FSH_OK) {
    return report_unreadable(code);
  }
  change(settings.msn_enable, arguments.enabled);
  change(settings.w_d_name, arguments.workgroup);
  settings.code_page = arguments.code_page.value_or(settings.code_page);
  change(settings.wins_enable, arguments.wins);
  change(settings.wins_server, arguments.wins_server);
  change(settings.printer_name, arguments.printer);
  return report_saved(SaveSambaConf(&settings));
}

int apply(const NoArguments& /*none*/) {
  const int statuses[] = {
      report("apply the settings of Samba", SetSMB(),
             {{FSH_SAMBA_NOT_APPLIED, "a setting is missing, or Samba did not follow"}}),
      report("apply guest access", ResetGuest(),
             {{FSH_GUEST_NOT_SET, "the setting is missing, or smb.conf can not be written"}}),
      report("apply the printer", ResetPrinter(),
             {{FSH_PRINTER_NOT_SET, "the setting is missing, or smb.conf can not be written"}})};
  for (const int status : statuses) {
    if (status != kDone) return status;
  }
  return kDone;
}

void add_set(CLI::App& group) {
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare samba apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether Samba runs");
  verb.add_option("--workgroup", arguments.workgroup, "Workgroup or domain")
      ->check(follows(kWorkgroup));
  verb.add_option("--code-page", arguments.code_page, "Code page of old clients, such as 850")
      ->check(CLI::Range(1, 65535));
  add_switch(verb, "--wins", arguments.wins, "Whether a WINS server is asked for names");
  verb.add_option("--wins-server", arguments.wins_server, "Its address, empty for none")
      ->check(follows(kWinsServer));
  verb.add_option("--printer", arguments.printer, "Name of the shared printer, empty for none")
      ->check(follows(kPrinter));
  verb.require_option();
}

}  // namespace

void add_samba_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "samba", "File service for Windows clients");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  add_set(group);
  add_verb(group, "apply", "Make Samba, guest access and the printer follow the settings", apply);
}

}  // namespace fileshare
