// fileshare ftp ...: the settings of the FTP service.
#include <optional>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/services.h"

namespace fileshare {
namespace {

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<bool> anonymous;
  std::optional<int32_t> language;
  std::optional<int32_t> port;
  std::optional<int32_t> data_port;
  std::optional<bool> ssl;
  std::optional<int32_t> bandwidth;
};

// The library saves what it is given and reads other ports back as the well-known ones.
CLI::Validator port_or(int well_known) {
  const auto fault = [well_known](const std::string& text) -> std::string {
    int port = 0;
    const bool number = CLI::detail::lexical_cast(text, port);
    if (number && (port == well_known || (port >= 1024 && port <= 65535))) return {};
    return "this port is " + std::to_string(well_known) + " or 1024 to 65535";
  };
  return {fault, "PORT"};
}

int read(FtpSettings& settings) {
  return ReadFTPConf(&settings) == 0 ? kDone
                                     : refuse(
                                           "can not read the settings of FTP: the settings file "
                                           "can not be opened",
                                           kFailed);
}

int show(const JsonArguments& arguments) {
  FtpSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  print_record({{"enabled", settings.enabled != 0},
                {"anonymous", settings.anonymous != 0},
                {"language", settings.language},
                {"port", settings.port},
                {"data-port", settings.data_port},
                {"ssl", settings.ssl != 0},
                {"bandwidth", settings.bandwidth}},
               arguments.json);
  return kDone;
}

template <class Value>
void change(int32_t& field, const std::optional<Value>& value) {
  if (value) field = *value;
}

int set(const SetArguments& arguments) {
  FtpSettings settings{};
  if (const int status = read(settings); status != kDone) return status;
  change(settings.enabled, arguments.enabled);
  change(settings.anonymous, arguments.anonymous);
  change(settings.language, arguments.language);
  change(settings.port, arguments.port);
  change(settings.data_port, arguments.data_port);
  change(settings.ssl, arguments.ssl);
  change(settings.bandwidth, arguments.bandwidth);
  if (SaveFTPConf(&settings) == 0) return kDone;
  return refuse("can not save the settings of FTP: the settings file can not be written", kFailed);
}

int apply(const NoArguments& /*none*/) {
  return report("apply the settings of FTP", ResetFTP(),
                {{FSH_SERVICE_NOT_APPLIED, "the settings can not be read or a file not copied"},
                 {FSH_GUEST_ACCESS_MISSING, "the setting guest_access is missing"}});
}

void add_set(CLI::App& group) {
  auto& verb = add_verb(group, "set", "Change settings; the others stay", set);
  verb.footer("The server follows with \"fileshare ftp apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether clients are served");
  add_switch(verb, "--anonymous", arguments.anonymous, "Whether they need no account");
  verb.add_option("--language", arguments.language, "Code page of the clients, such as 437")
      ->check(CLI::Range(1, 65535));
  verb.add_option("--port", arguments.port, "Control port: 21, or 1024 to 65535")
      ->check(port_or(21));
  verb.add_option("--data-port", arguments.data_port, "Data port: 20, or 1024 to 65535")
      ->check(port_or(20));
  add_switch(verb, "--ssl", arguments.ssl, "Whether connections may be encrypted");
  verb.add_option("--bandwidth", arguments.bandwidth, "Kilobytes a second, 0 for no limit")
      ->check(CLI::NonNegativeNumber);
  verb.require_option();
}

}  // namespace

void add_ftp_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "ftp", "File service for FTP clients");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  add_set(group);
  add_verb(group, "apply", "Make vsftpd and inetd follow the settings", apply);
}

}  // namespace fileshare
