// fileshare: the library's operations as commands. How to add a group of verbs: verbs.h.
#include <cstdio>
#include <exception>
#include <iostream>

#include "cli/failure.h"
#include "cli/utf8.h"
#include "cli/verbs.h"

namespace fileshare {
namespace {

constexpr const char* kHelp = "Manages the users, groups, shares and services of this file server.";

constexpr const char* kFooter =
    "Each group and each verb has its own --help.\n"
    "\n"
    "Exit status:\n"
    "  0  done\n"
    "  1  not done; the error line says why and gives the library's result code\n"
    "  2  the command line was wrong or a name was refused; nothing was tried";

void add_all_verbs(CLI::App& app) {
  add_user_verbs(app);
  add_group_verbs(app);
  add_share_verbs(app);
  add_lock_verbs(app);
  add_backup_verbs(app);
  add_recover_verb(app);
  add_samba_verbs(app);
  add_ftp_verbs(app);
  add_https_verbs(app);
  add_afp_verbs(app);
  add_nfs_verbs(app);
  add_album_verbs(app);
  add_itunes_verbs(app);
  add_broadcast_verbs(app);
  add_upnp_verbs(app);
  add_media_verbs(app);
}

// The innermost command that was given.
const CLI::App* chosen_command(const CLI::App* command) {
  while (!command->get_subcommands().empty()) command = command->get_subcommands().back();
  return command;
}

std::string path_of(const CLI::App* command) {
  const CLI::App* parent = command->get_parent();
  return (parent == nullptr ? "" : path_of(parent) + ' ') + command->get_name();
}

// CLI11 names a verb or an argument that is missing before one that it does not know.
std::string usage_message(const CLI::App* command, const CLI::Error& error) {
  for (const std::string& unknown : command->remaining()) {
    if (unknown != "--") return in_quotes(unknown) + " is not known here";
  }
  if (dynamic_cast<const Verb*>(command) == nullptr) return "a verb is missing";
  return printable(error.what());
}

std::string usage_error(const CLI::App* app, const CLI::Error& error) {
  const CLI::App* command = chosen_command(app);
  return "fileshare: " + usage_message(command, error) + "\nTry \"" + path_of(command) +
         " --help\".\n";
}

int run_chosen(const CLI::App& app) {
  const auto* verb = dynamic_cast<const Verb*>(chosen_command(&app));
  if (verb == nullptr) return kUsageError;
  const int status = verb->run();
  // A list that did not reach its reader is not a success.
  if (!std::cout.flush()) return refuse("the output could not be written", kFailed);
  return status;
}

int run(int argc, char** argv) {
  CLI::App app(kHelp, "fileshare");
  app.set_version_flag("--version", "fileshare " FILESHARE_VERSION);
  app.require_subcommand(1)->footer(kFooter);
  app.failure_message(usage_error);
  add_all_verbs(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsageError;
  }
  return run_chosen(app);
}

}  // namespace
}  // namespace fileshare

int main(int argc, char** argv) {
  try {
    return fileshare::run(argc, argv);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "fileshare: %s\n", error.what());  // nobody left to tell
    return fileshare::kFailed;
  }
}
