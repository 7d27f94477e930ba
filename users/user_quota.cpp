// The disk quota of a user, set through the quota tool.
#include <unistd.h>

#include <cinttypes>
#include <tuple>

#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "conf/volumes.h"
#include "filesharing/users.h"

namespace filesharing {
namespace {

const char* raid_device() {
  return access(paths::kLvmDevice, F_OK) == 0 ? paths::kLvmDevice : paths::kRaidDevice;
}

std::string limit_line(const char* device, std::uint64_t blocks) {
  return format("%s 0 %" PRIu64 " %" PRIu64 " 0 0 0\n", device, blocks, blocks);
}

// The limits on each device, in blocks of 1 KiB; empty on a server without a data disk.
std::string quota_prototype(const DiskPresence& disks, std::uint32_t megabytes) {
  const std::uint64_t blocks = std::uint64_t{megabytes} << 10;
  std::string lines;
  if (disks.volume(1) == 1) {
    lines += limit_line("/dev/sda1", blocks);
  }
  if (disks.volume(2) == 1) {
    lines += limit_line("/dev/sdb1", blocks);
  }
  if (disks.volume(5) != 0) {
    lines += limit_line(raid_device(), blocks);
  }
  return lines;
}

Result set_user_quota(const char* name, std::uint32_t megabytes) {
  default_child_signal();
  std::ignore = unlink(paths::kQuotaPrototype);  // there may be none
  const std::string prototype = quota_prototype(DiskPresence(), megabytes);
  if (prototype.empty()) {
    return FSH_OK;
  }
  Stream stream = open_stream(paths::kQuotaPrototype, "w+");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  write_text(stream.get(), prototype);
  if (!close_written(std::move(stream))) {
    return FSH_CANNOT_OPEN;
  }
  const int status =
      run_command(R"(/usr/bin/edquota -u "%s" 2>/dev/null)", shell_escaped(name).c_str());
  return status == 0 ? FSH_OK : FSH_QUOTA_FAILED;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned SetUserQuota(const char* name, uint32_t megabytes) {
  if (name == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_QUOTA_FAILED, [&] { return set_user_quota(name, megabytes); });
}
