// fileshare share ...: shares and who may use them.
#include <optional>

#include "cli/confirm.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/removable_verbs.h"
#include "cli/share_checks.h"
#include "cli/verbs.h"
#include "filesharing/groups.h"
#include "filesharing/shares.h"

namespace fileshare {
namespace {

constexpr const char* kListHelp =
    "Writers may read and write, readers only read. The group \"administrators\" may write on "
    "every "
    "share and is named with --json only.";

struct AddArguments {
  std::string name;
  std::string folder;
  std::string comment;
  int volume = 1;
};

struct UpdateArguments {
  std::string name;
  std::optional<std::string> folder;
  std::optional<std::string> comment;
  std::optional<int> volume;
};

struct RenameArguments {
  std::string name;
  std::string new_name;
};

struct DeleteArguments {
  std::string name;
};

struct DeleteAllArguments {
  bool folders = false;
  bool yes = false;
};

struct AccessArguments {
  std::string group;
  std::string share;
  bool read_only = false;
};

std::string operation_on(const char* verb, const std::string& name) {
  return std::string(verb) + " share " + in_quotes(name);
}

constexpr Reason kUnknown{FSH_SHARE_UNKNOWN, "there is no share of this name"};
constexpr Reason kOtherCase{FSH_SHARE_UNREGISTERED,
                            "the share's name is written in another letter case"};
constexpr Reason kSmbNotWritten{FSH_SMB_SHARES_NOT_WRITTEN, "Samba's file could not be written"};
constexpr Reason kAfpNotWritten{FSH_AFP_SHARES_NOT_WRITTEN,
                                "the file of the Apple shares could not be written"};
constexpr const char* kNoDataFolder = "the volume has no data folder";

// A table has better use for its columns than the group that writes everywhere.
Json described(const ShareInfo& share, bool json) {
  constexpr std::string_view kAlwaysWrites = "administrators";
  Json writers = json ? Json::array({kAlwaysWrites}) : Json::array();
  Json readers = Json::array();
  for (const ShareGroup* group = share.groups; group != nullptr; group = group->next) {
    if (group->name != kAlwaysWrites) {
      (group->rights == FSH_READ_WRITE ? writers : readers).push_back(group->name);
    }
  }
  return {
      {"name", share.name},       {"volume", share.volume},        {"path", share.path},
      {"comment", share.comment}, {"writers", std::move(writers)}, {"readers", std::move(readers)}};
}

int list_shares(const JsonArguments& arguments) {
  ShareInfo* shares = nullptr;
  if (const unsigned code = GetAllShare(&shares); code != FSH_OK) {
    return report("list the shares", code);
  }
  Json list = Json::array();
  for (const ShareInfo* share = shares; share != nullptr; share = share->next) {
    list.push_back(described(*share, arguments.json));
  }
  FreeShareList(shares);
  print_list(list, {"name", "volume", "path", "comment", "writers", "readers"}, arguments.json);
  return kDone;
}

int show_share(const ShowArguments& arguments) {
  constexpr int kNotFilled = -1;
  ShareInfo share{};
  fill(share.name, arguments.name);
  share.volume = kNotFilled;
  unsigned code = GetShareWithGroup(&share);
  if (code == FSH_OK && share.volume == kNotFilled) code = FSH_SHARE_UNREGISTERED;
  if (code != FSH_OK) {
    return report(operation_on("show", arguments.name), code, {kUnknown, kOtherCase});
  }
  const Json shown = described(share, arguments.json);
  FreeShGrpList(share.groups);
  print_record(shown, arguments.json);
  return kDone;
}

int add_share(const AddArguments& arguments) {
  ShareInfo share{};
  fill(share.name, arguments.name);
  fill(share.path, arguments.folder);
  fill(share.comment, arguments.comment);
  share.volume = arguments.volume;
  return report(operation_on("add", arguments.name), AddShare(&share),
                {{FSH_SHARE_EXISTS, "a share of this name exists"},
                 {FSH_FOLDER_SHARED, "the folder is shared already"},
                 {FSH_SHARE_NOT_ADDED, "another change is going on, or the volume is not there"},
                 {FSH_FAILED, "the list of shares could not be written"},
                 kSmbNotWritten,
                 kAfpNotWritten});
}

// Gives the share what `change` makes of its record.
template <class Change>
int change_share(const char* verb, const std::string& name, Change change) {
  const std::string operation = operation_on(verb, name);
  ShareInfo share{};
  fill(share.name, name);
  if (ShareExist(name.c_str()) == 0) return report(operation, FSH_SHARE_UNKNOWN, {kUnknown});
  if (const unsigned code = GetShareInfo(&share); code != FSH_OK) return report(operation, code);
  change(share);
  return report(
      operation, UpdateShare(name.c_str(), &share),
      {kUnknown,
       kOtherCase,
       {FSH_SHARE_EXISTS, name == share.name
                              ? "another change is going on"
                              : "a share of the new name exists, or another change is going on"},
       {FSH_SHARE_NOT_ADDED, kNoDataFolder},
       {FSH_FAILED, "a file could not be changed"},
       kSmbNotWritten,
       kAfpNotWritten});
}

int update_share(const UpdateArguments& arguments) {
  return change_share("update", arguments.name, [&](ShareInfo& share) {
    if (arguments.folder) fill(share.path, *arguments.folder);
    if (arguments.comment) fill(share.comment, *arguments.comment);
    share.volume = arguments.volume.value_or(share.volume);
  });
}

int rename_share(const RenameArguments& arguments) {
  return change_share("rename", arguments.name,
                      [&](ShareInfo& share) { fill(share.name, arguments.new_name); });
}

constexpr std::initializer_list<Reason> kDeleteReasons = {
    kUnknown,
    {FSH_SHARE_NOT_DELETED, "another change is going on"},
    {FSH_FAILED, "Samba's file could not be written"},
    kAfpNotWritten};

int delete_share(const DeleteArguments& arguments) {
  return report(operation_on("delete", arguments.name), DelShare(arguments.name.c_str()),
                kDeleteReasons);
}

// Says which share keeps the folders from being removed; empty when none does.
std::string folder_that_stays() {
  ShareInfo* shares = nullptr;
  if (GetAllShare(&shares) != FSH_OK) return {};  // the deletion finds that out itself
  std::string fault;
  for (const ShareInfo* share = shares; share != nullptr && fault.empty(); share = share->next) {
    fault = removal_fault(share->path);
    if (!fault.empty()) fault.insert(0, "share " + in_quotes(share->name) + ": ");
  }
  FreeShareList(shares);
  return fault;
}

int delete_all(const DeleteAllArguments& arguments) {
  if (arguments.folders) {
    const std::string fault = folder_that_stays();
    if (!fault.empty()) return refuse(fault + "; nothing was deleted", kUsageError);
  }
  const char* deed =
      arguments.folders ? "delete all shares and everything in them" : "delete all shares";
  if (const int status = confirm(arguments.yes, deed); status != kDone) return status;
  return report("delete all shares", DelAllShare(arguments.folders ? 1 : 0), kDeleteReasons);
}

std::string access_operation(const char* verb, const char* preposition,
                             const AccessArguments& arguments) {
  return std::string(verb) + " group " + in_quotes(arguments.group) + preposition +
         in_quotes(arguments.share);
}

int grant(const AccessArguments& arguments) {
  const std::string operation = access_operation("let", " use share ", arguments);
  if (GroupExist(arguments.group.c_str()) == 0) {
    return refuse("can not " + operation + ": there is no group of this name", kFailed);
  }
  const char* const shares[] = {arguments.share.c_str()};
  return report(operation,
                AddGroupToShares(arguments.group.c_str(), shares, 1, arguments.read_only ? 1 : 0),
                {kUnknown,
                 kOtherCase,
                 {FSH_ADD_ACCESS_BUSY, "another change is going on"},
                 {FSH_ACCESS_EXISTS, "it may use the share already"},
                 kSmbNotWritten,
                 kAfpNotWritten});
}

int revoke(const AccessArguments& arguments) {
  const char* const shares[] = {arguments.share.c_str()};
  return report(access_operation("keep", " from share ", arguments),
                DelGroupFromShares(arguments.group.c_str(), shares, 1),
                {kUnknown,
                 kOtherCase,
                 {FSH_REMOVE_ACCESS_BUSY, "another change is going on"},
                 {FSH_ACCESS_NOT_REMOVED, "a file could not be written"}});
}

CLI::Option* add_share_name(CLI::App& verb, std::string& name) {
  return add_name(verb, name, "NAME", "The share's name", kShareName);
}

CLI::Range volumes() {
  return {1, 5};
}

void add_showing_verbs(CLI::App& group) {
  auto& list = add_verb(group, "list", "List the shares and who may use them", list_shares);
  list.footer(kListHelp);
  add_json(list, list.arguments.json);
  auto& show = add_verb(group, "show", "Show a share", show_share);
  show.footer(kListHelp);
  add_share_name(show, show.arguments.name);
  add_json(show, show.arguments.json);
}

void add_changing_verbs(CLI::App& group) {
  auto& add = add_verb(group, "add", "Share a folder, which is made if it is not there", add_share);
  add.footer("Only administrators may use it until \"share grant\" lets a group in.");
  add_share_name(add, add.arguments.name)->check(new_share_name_fault);
  add.add_option("FOLDER", add.arguments.folder, "The folder on the volume, as in /Music")
      ->required()
      ->check(folder_fault);
  add.add_option("--volume", add.arguments.volume, "The volume's number")
      ->check(volumes())
      ->capture_default_str();
  add.add_option("--comment", add.arguments.comment, "A comment")->check(follows(kComment));

  auto& update = add_verb(group, "update", "Change what is given of a share", update_share);
  add_share_name(update, update.arguments.name);
  update.add_option("--folder", update.arguments.folder, "The new folder; the old one stays")
      ->check(folder_fault);
  update.add_option("--volume", update.arguments.volume, "The new volume")->check(volumes());
  update.add_option("--comment", update.arguments.comment, "The new comment")
      ->check(follows(kComment));

  auto& rename = add_verb(group, "rename", "Rename a share", rename_share);
  rename.footer("Its line for Apple clients stays under the old name too.");
  add_share_name(rename, rename.arguments.name);
  add_name(rename, rename.arguments.new_name, "NEW-NAME", "The new name", kShareName)
      ->check(new_share_name_fault);
}

void add_deleting_verbs(CLI::App& group) {
  auto& one = add_verb(group, "delete", "Delete a share; its folder stays", delete_share);
  add_share_name(one, one.arguments.name);
  auto& all =
      add_verb(group, "delete-all", "Delete the shares, up to one called ADMIN", delete_all);
  all.add_flag("--folders", all.arguments.folders, "Remove their folders too");
  add_yes(all, all.arguments.yes);
}

template <class Verb>
void add_group_and_share(Verb& verb) {
  add_name(verb, verb.arguments.group, "GROUP", "The group's name", kGroupName);
  add_name(verb, verb.arguments.share, "SHARE", "The share's name", kShareName);
}

void add_access_verbs(CLI::App& group) {
  auto& granting = add_verb(group, "grant", "Let a group use a share", grant);
  add_group_and_share(granting);
  granting.add_flag("--read-only", granting.arguments.read_only, "Let it read, not write");
  auto& revoking = add_verb(group, "revoke", "Keep a group from a share", revoke);
  add_group_and_share(revoking);
}

}  // namespace

void add_share_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "share", "Shared folders and who may use them");
  add_showing_verbs(group);
  add_changing_verbs(group);
  add_deleting_verbs(group);
  add_access_verbs(group);
  add_removable_verbs(group);
}

}  // namespace fileshare
