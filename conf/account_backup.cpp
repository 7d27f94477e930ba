#include "conf/account_backup.h"

#include <fcntl.h>
#include <unistd.h>

#include <tuple>

#include "conf/file_copy.h"
#include "conf/guarded_files.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/room.h"
#include "conf/shell.h"
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

void look_at_account_files(const ChangeSize& change, const std::string& folder, Room& room) {
  const std::string temporary = folder + "/tmp";
  for (const GuardedFile& file : kGuardedFiles) {
    if (file.is_in(change.copied)) {
      room.copy(file.path(folder), file.copy(folder));
    }
  }
  for (const GuardedFile& file : kGuardedFiles) {
    const std::string path = file.path(folder);
    if (file.is_in(change.appended)) {
      room.copy(path, path, change.added);
    } else if (file.is_in(change.mask)) {
      room.rewrite(path, temporary, change.added);
    }
  }
  for (const GuardedFile& file : kGuardedFiles) {
    if (change.repeats && file.is_in(change.mask)) {
      room.draft(file.path(folder), temporary, change.added);
    }
  }
}

}  // namespace

bool has_room(const ChangeSize& change) {
  Room room;
  if (const std::string folder = account_folder(); !folder.empty()) {
    look_at_account_files(change, folder, room);
  }
  if (change.registers) {
    room.replace(paths::kShares, change.added);
    room.copy(paths::kAppleVolumes, paths::kAppleVolumes, change.added);
    if (change.repeats) {
      room.draft(paths::kShares, "/etc", change.added);
    }
  }
  return room.is_there();
}

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

void restore_copies(int mask) {
  const std::string folder = account_folder();
  for (const GuardedFile& file : kGuardedFiles) {
    if (!folder.empty() && file.is_in(mask)) {
      std::ignore = copy_file(
          {.from = file.copy(folder), .to = file.path(folder), .runs = 2, .mends_onward = true});
    }
  }
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
