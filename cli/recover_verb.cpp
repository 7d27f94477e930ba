// fileshare recover: the server after a change whose process died.
#include <iostream>

#include "cli/backup_verbs.h"
#include "cli/cut_copy.h"
#include "cli/dead_change.h"
#include "cli/failure.h"
#include "cli/guarded_files.h"
#include "cli/library_users.h"
#include "cli/share_repair.h"
#include "cli/verbs.h"
#include "filesharing/conf.h"

namespace fileshare {
namespace {

struct RecoverArguments {
  bool force = false;
  bool shares = false;
};

bool is_taken_of(int mask) {
  for (const GuardedFile& file : guarded_files()) {
    if ((mask & file.bit) != 0 && is_taken(file)) return true;
  }
  return false;
}

bool any_taken() {
  for (const GuardedFile& file : guarded_files()) {
    if (is_taken(file)) return true;
  }
  return false;
}

// Locks carry no owner, so whoever has loaded the library may hold them.
int refuse_beside_others() {
  const std::vector<std::string> others = other_library_users();
  if (others.empty()) return kDone;
  return refuse("can not recover: process " + others.front() +
                    " uses the library and may be at work; try again when it has ended, or give "
                    "--force if it only waits",
                kFailed);
}

int restore_half_done() {
  const int files = half_done_files();
  int status = kDone;
  for (const GuardedFile& file : guarded_files()) {
    if ((file.bit & files) == 0) continue;
    if (restore_file(file) == kDone) {
      std::cout << "restored file " << in_quotes(file.name) << '\n';
    } else {
      status = kFailed;
    }
  }
  if (files != 0) UpdateDiskUserGroupInfo();  // the second disk may have got what is undone
  return status;
}

int clear_all_locks() {
  int status = kDone;
  for (const GuardedFile& file : guarded_files()) {
    if (!is_taken(file)) continue;
    if (clear_lock(file) == kDone) {
      std::cout << "cleared lock " << in_quotes(file.name) << '\n';
    } else {
      status = kFailed;
    }
  }
  return status;
}

// The locks go last: while they are there, nobody changes what is being restored, and a recovery
// that fails or dies itself can be run again.
int recover(const RecoverArguments& arguments) {
  if (!any_taken() && !arguments.shares) {
    std::cout << "no lock is taken: no change was interrupted\n";
    return kDone;
  }
  if (!arguments.force) {
    if (const int status = refuse_beside_others(); status != kDone) return status;
  }
  const bool shares = arguments.shares || is_taken_of(FSH_FILE_SHARE | FSH_FILE_SMB);
  if (const int status = restore_half_done(); status != kDone) return status;
  if (!drop_cut_copies()) return refuse("can not remove a copy that was cut short", kFailed);
  if (const int status = finish_cut_copies(); status != kDone) return status;
  if (const int status = shares ? drop_unregistered_shares() : kDone; status != kDone) {
    return status;
  }
  if (const int status = clear_all_locks(); status != kDone) return status;
  return shares ? complete_shares() : kDone;
}

}  // namespace

void add_recover_verb(CLI::App& app) {
  auto& verb = add_verb(app, "recover", "Put right what a change left whose process died", recover);
  verb.footer(
      "Restores the account files if the change was half done, clears the locks, and makes the\n"
      "entries of the shares follow the list of shares. Says what it did.");
  verb.add_flag("--force", verb.arguments.force, "Even while a process uses the library");
  verb.add_flag("--shares", verb.arguments.shares, "Look at the shares even without a lock");
}

}  // namespace fileshare
