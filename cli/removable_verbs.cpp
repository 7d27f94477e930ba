// The shares of USB disks: what is done when a disk has been mounted, or is gone.
#include "cli/removable_verbs.h"

#include <functional>

#include "cli/failure.h"
#include "cli/names.h"
#include "filesharing/conf.h"
#include "filesharing/shares.h"

namespace fileshare {
namespace {

constexpr int kDisks = 2;
constexpr int kMostPartitions = 255;

// The name of a share, PREFIX_N_PPP, has 20 characters at most. /proc/mounts writes blanks as
// numbers, so that a name with one would not be found.
constexpr TextRule kPrefix{"the prefix of a disk", 14, ":,=/[]\"'$\\` "};

struct Disk {
  std::string prefix;
  int number = 1;  // counted from 1, as in the names of its shares
};

struct RemoveArguments {
  Disk disk;
  int partitions = 1;
};

std::string prefix_fault(const std::string& prefix) {
  if (prefix.rfind("FLASH", 0) != 0 && prefix.rfind("HDD", 0) != 0) {
    return R"(the prefix of a disk begins with "FLASH" or "HDD")";
  }
  return fault_of(prefix, kPrefix);
}

std::string name_of(const Disk& disk) {
  return disk.prefix + '_' + std::to_string(disk.number);
}

// The library leaves the locks of the share files to its callers here.
int change_shares(const std::string& operation, const std::function<int()>& change) {
  constexpr int kShareFiles = FSH_FILE_SHARE | FSH_FILE_SMB;
  if (Lock(kShareFiles) != 0) {
    return refuse("can not " + operation + ": another change is under way (see lock list)",
                  kFailed);
  }
  const int result = change();
  Unlock(kShareFiles);
  return report(operation, static_cast<unsigned>(result),
                {{FSH_FAILED, "a file can not be opened or written"}});
}

int add_shares(const Disk& disk) {
  return change_shares("share disk " + in_quotes(name_of(disk)),
                       [&] { return AddWinShares(disk.prefix.c_str(), disk.number - 1); });
}

int remove_shares(const RemoveArguments& arguments) {
  const Disk& disk = arguments.disk;
  return change_shares("remove the shares of disk " + in_quotes(name_of(disk)), [&] {
    return DelWinShares(disk.prefix.c_str(), disk.number - 1, arguments.partitions);
  });
}

void add_disk(CLI::App& verb, Disk& disk) {
  verb.add_option("PREFIX", disk.prefix, "Prefix of the disk, such as FLASH or HDD")
      ->required()
      ->check(prefix_fault);
  verb.add_option("NUMBER", disk.number, "Number of the disk")
      ->required()
      ->check(CLI::Range(1, kDisks));
}

}  // namespace

void add_removable_verbs(CLI::App& group) {
  auto& add =
      add_verb(group, "removable-add", "Share a USB disk that has been mounted", add_shares);
  add.footer(
      "Each partition P that is mounted at /harddisk/volume_3/data/PREFIX_NUMBER_P, or at "
      "volume_4,\n"
      "becomes a share of that name, which all users can read, and write where the mount allows "
      "it.\n"
      "What is shared already is added once more: remove it first.");
  add_disk(add, add.arguments);
  auto& remove =
      add_verb(group, "removable-remove", "Remove the shares of a USB disk", remove_shares);
  add_disk(remove, remove.arguments.disk);
  remove.add_option("PARTITIONS", remove.arguments.partitions, "How many partitions the disk had")
      ->required()
      ->check(CLI::Range(1, kMostPartitions));
}

}  // namespace fileshare
