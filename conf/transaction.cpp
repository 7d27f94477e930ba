#include "conf/transaction.h"

#include <fcntl.h>
#include <unistd.h>

#include <tuple>

#include "conf/file_copy.h"
#include "conf/guarded_files.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/room.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/conf.h"

namespace filesharing {

namespace {

constexpr const char* kMirrored[] = {"passwd", "smbpasswd", "group", "usrgrp.info"};

// The conf folder of the configuration volume; empty without one.
std::string account_folder() {
  const int volume = configuration_volume();
  return volume == 0 ? "" : paths::volume_conf(volume);
}

// Copies the files of mask, each from its name with one suffix to its name with the other.
int copy_account_files(int mask, const char* from_suffix, const char* to_suffix) {
  const std::string folder = account_folder();
  if (folder.empty()) {
    return -1;
  }
  int status = 0;
  for (const GuardedFile& file : kGuardedFiles) {
    for (int run = 0; file.is_in(mask) && run < 2; ++run) {
      const std::string path = file.path(folder);
      status = run_command("/bin/cp -f %s%s %s%s 2>/dev/null", path.c_str(), from_suffix,
                           path.c_str(), to_suffix);
    }
  }
  return status;
}

// Pushes a copy to the disk before what it was taken of changes: a power cut leaves one of the two.
bool is_flushed(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const bool flushed = file >= 0 && fsync(file) == 0;
  if (file >= 0) {
    std::ignore = close(file);  // nothing was written
  }
  return flushed;
}

// A file that is not there has nothing to lose.
bool is_whole(const std::string& path, const std::string& copy) {
  if (access(path.c_str(), F_OK) != 0) {
    return true;
  }
  const std::optional<std::string> content = read_file(path);
  return content && content == read_file(copy) && is_flushed(copy);
}

void look_at_account_files(const TransactionOptions& change, const std::string& folder,
                           Room& room) {
  const std::string temporary = folder + "/tmp";
  const int written = change.mask | change.unguarded;
  for (const GuardedFile& file : kGuardedFiles) {
    if (change.backs_up && file.is_in(change.mask)) {
      room.copy(file.path(folder), file.copy(folder));
    }
  }
  for (const GuardedFile& file : kGuardedFiles) {
    const std::string path = file.path(folder);
    if (file.is_in(change.appends)) {
      room.copy(path, path, change.adds);
    } else if (file.is_in(written)) {
      room.rewrite(path, temporary, change.adds);
    }
  }
  for (const GuardedFile& file : kGuardedFiles) {
    if (change.repeats && file.is_in(written)) {
      room.draft(file.path(folder), temporary, change.adds);
    }
  }
}

// Whether there is room for all that the change will write, its copies included.
bool has_room(const TransactionOptions& change) {
  Room room;
  if (const std::string folder = account_folder(); !folder.empty()) {
    look_at_account_files(change, folder, room);
  }
  if (change.registers) {
    room.replace(paths::kShares, change.adds);
    room.copy(paths::kAppleVolumes, paths::kAppleVolumes, change.adds);
    if (change.repeats) {
      room.draft(paths::kShares, "/etc", change.adds);
    }
  }
  return room.is_there();
}

// Copies of the files of a mask.
struct Copies {
  int whole;  // the files that can be restored from theirs
  bool room;  // false: one is not whole for want of room
};

// Takes the copies. One that did not become whole is removed.
Copies take_copies(int mask) {
  std::ignore = BackupConFiles(mask);  // what came of it is looked at
  Copies copies{.whole = mask, .room = true};
  const std::string folder = account_folder();
  for (const GuardedFile& file : kGuardedFiles) {
    const std::string path = file.path(folder);
    const std::string copy = file.copy(folder);
    if (folder.empty() || !file.is_in(mask) || is_whole(path, copy)) {
      continue;
    }
    std::ignore = unlink(copy.c_str());  // one that stays is not used either
    copies.whole &= ~static_cast<int>(file.bit);
    copies.room = copies.room && has_room_for_copy(path, copy);
  }
  return copies;
}

// Puts the files back from their copies. A file without one stays as it is.
void restore_copies(int mask) {
  const std::string folder = account_folder();
  for (const GuardedFile& file : kGuardedFiles) {
    if (!folder.empty() && file.is_in(mask)) {
      std::ignore = copy_file(
          {.from = file.copy(folder), .to = file.path(folder), .runs = 2, .mends_onward = true});
    }
  }
}

}  // namespace

Result Transaction::begin() {
  if (options_.locks && Lock(options_.mask) != 0) {
    return options_.busy;
  }
  const Result result = guarded(options_.out_of_memory, [&] { return prepare(); });
  if (result != FSH_OK && options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

// A server without a configuration volume has nothing to back up, and is changed all the same.
Result Transaction::prepare() {
  if (!has_room(options_)) {
    return options_.no_room;
  }
  if (!options_.backs_up) {
    return FSH_OK;
  }
  const Copies copies = take_copies(options_.mask);
  restorable_ = copies.whole;
  return copies.room ? FSH_OK : options_.no_room;
}

Result Transaction::end(Result result) {
  if (result != FSH_OK && on_failure == OnFailure::kNothing) {
    return result;
  }
  if (result == FSH_OK && options_.mirrors) {
    UpdateDiskUserGroupInfo();
  }
  if (result != FSH_OK && on_failure == OnFailure::kRestore) {
    std::ignore = guarded(FSH_NO_MEMORY, [&] {
      restore_copies(restorable_);
      return FSH_OK;  // the change's own code is its result
    });
  }
  if (options_.locks) {
    Unlock(options_.mask);
  }
  return result;
}

}  // namespace filesharing

using namespace filesharing;

int BackupConFiles(int mask) {
  return guarded(-1, [&] { return copy_account_files(mask, "", ".ttt"); });
}

int RestoreConFiles(int mask) {
  return guarded(-1, [&] { return copy_account_files(mask, ".ttt", ""); });
}

void UpdateDiskUserGroupInfo(void) {
  const DiskPresence disks;
  if (disks.volume(1) != 1 || disks.volume(2) != 1) {
    return;
  }
  for (const char* name : kMirrored) {
    // The next change mirrors again: what comes of this copy has no result.
    std::ignore = guarded(CopyStatus{}, [&] {
      return copy_file(
          {.from = paths::volume_conf(1) + '/' + name, .to = paths::volume_conf(2) + '/' + name});
    });
  }
}
