// Verbs and their groups: what `fileshare GROUP VERB ARGUMENTS` is made of.
//
// To add a group of verbs:
//  1. Write cli/NAME_verbs.cpp with one function a verb, `int verb(const ItsArguments&)`. It calls
//     the library and returns report(...) of failure.h, that is the exit status.
//  2. In that file, define `void add_NAME_verbs(CLI::App& app)`: add_group, then for each verb
//         auto& verb = add_verb(group, "add", "What it does", add_it);
//         add_name(verb, verb.arguments.name, "NAME", "What it names", kGroupName);  // names.h
//         add_json(verb, verb.arguments.json);                                       // output.h
//         verb.add_option("--comment", verb.arguments.comment, "...")->check(follows(kComment));
//     The targets of the options are the fields of verb.arguments.
//  3. Declare that function below, call it in main.cpp, name the file in CMakeLists.txt.
// Other shared pieces: print_list and print_record (output.h), confirm (confirm.h), passwords
// (password.h), fill for the fields of records (record_text.h). Only the library's public headers
// are used here.
#ifndef FILESHARE_VERBS_H
#define FILESHARE_VERBS_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

namespace fileshare {

// The end of a command line. main runs it once everything has been parsed and checked.
class Verb : public CLI::App {
 public:
  using CLI::App::App;
  [[nodiscard]] virtual int run() const = 0;  // the exit status
};

template <class Arguments>
class VerbWith final : public Verb {
 public:
  using Action = int (*)(const Arguments&);

  VerbWith(std::string help, std::string name, Action action)
      : Verb(std::move(help), std::move(name)), action_(action) {}
  [[nodiscard]] int run() const override { return action_(arguments); }

  Arguments arguments{};

 private:
  Action action_;
};

// What the arguments of many verbs are.
struct NoArguments {};

struct NameArguments {
  std::string name;
};

struct JsonArguments {
  bool json = false;
};

struct ShowArguments {
  std::string name;
  bool json = false;
};

// Adds a group that wants one of its verbs. The limit of one also keeps CLI11 from taking an
// account called "list" for the verb.
inline CLI::App& add_group(CLI::App& app, const std::string& name, const std::string& help) {
  return *app.add_subcommand(name, help)->require_subcommand(1);
}

template <class Arguments>
VerbWith<Arguments>& add_verb(CLI::App& group, std::string name, std::string help,
                              int (*action)(const Arguments&)) {
  auto verb = std::make_shared<VerbWith<Arguments>>(std::move(help), std::move(name), action);
  group.add_subcommand(verb);
  return *verb;
}

void add_user_verbs(CLI::App& app);
void add_group_verbs(CLI::App& app);
void add_lock_verbs(CLI::App& app);
void add_backup_verbs(CLI::App& app);
void add_recover_verb(CLI::App& app);
void add_samba_verbs(CLI::App& app);
void add_ftp_verbs(CLI::App& app);
void add_https_verbs(CLI::App& app);
void add_itunes_verbs(CLI::App& app);
void add_broadcast_verbs(CLI::App& app);
void add_upnp_verbs(CLI::App& app);
void add_media_verbs(CLI::App& app);
void add_share_verbs(CLI::App& app);
void add_afp_verbs(CLI::App& app);
void add_nfs_verbs(CLI::App& app);
void add_album_verbs(CLI::App& app);

}  // namespace fileshare

#endif
