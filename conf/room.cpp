#include "conf/room.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <limits>
#include <optional>

namespace filesharing {
namespace {

struct Place {
  dev_t device;
  std::optional<std::int64_t> size;  // of the file that is there
  bool takes_room = true;            // no device, no folder
};

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// Where a file is or would be; nothing when its folder is not there either.
std::optional<Place> place_of(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) {
    return Place{
        .device = status.st_dev, .size = status.st_size, .takes_room = S_ISREG(status.st_mode)};
  }
  if (stat(folder_of(path).c_str(), &status) == 0) {
    return Place{.device = status.st_dev, .size = std::nullopt};
  }
  return std::nullopt;
}

}  // namespace

void Room::FileSystem::take(std::int64_t more_blocks, std::int64_t more_files) {
  blocks += more_blocks;
  files += more_files;
  most_blocks = std::max(most_blocks, blocks);
  most_files = std::max(most_files, files);
}

Room::FileSystem* Room::of(const std::string& path, dev_t device) {
  for (FileSystem& known : file_systems_) {
    if (known.device == device) {
      return &known;
    }
  }
  struct statvfs status {};
  if (statvfs(path.c_str(), &status) != 0 && statvfs(folder_of(path).c_str(), &status) != 0) {
    return nullptr;
  }
  // Callers run as root: what a file system keeps back for root counts as free. One that has no
  // limit, or makes its inodes as they are needed, says that it has none in all.
  constexpr auto kNoLimit = std::numeric_limits<std::int64_t>::max();
  const auto free = [](auto all, auto unused) {
    return all == 0 ? kNoLimit : static_cast<std::int64_t>(unused);
  };
  file_systems_.push_back(
      {.device = device,
       .block_size = std::max(std::int64_t{1}, static_cast<std::int64_t>(status.f_frsize)),
       .free_blocks = free(status.f_blocks, status.f_bfree),
       .free_files = free(status.f_files, status.f_ffree)});
  return &file_systems_.back();
}

void Room::copy(const std::string& from, const std::string& to, std::uint64_t added) {
  const auto source = place_of(from);
  const auto target = place_of(to);
  if (!source || !source->size || !target || !target->takes_room) {
    return;
  }
  FileSystem* const there = of(to, target->device);
  if (there == nullptr) {
    return;
  }
  // The command cuts the target before it writes: what that held is free again.
  const std::int64_t size = *source->size + static_cast<std::int64_t>(added);
  there->take(there->blocks_of(size) - there->blocks_of(target->size.value_or(0)),
              target->size ? 0 : 1);
}

void Room::replace(const std::string& path, std::uint64_t added) {
  const auto place = place_of(path);
  FileSystem* const there =
      place && place->takes_room && place->size ? of(path, place->device) : nullptr;
  if (there != nullptr) {
    there->take(there->blocks_of(*place->size + static_cast<std::int64_t>(added)), 1);
    there->take(-there->blocks_of(*place->size), -1);
  }
}

void Room::draft(const std::string& from, const std::string& folder, std::uint64_t added) {
  take_draft(from, folder, added, false);
}

void Room::rewrite(const std::string& from, const std::string& folder, std::uint64_t added) {
  take_draft(from, folder, added, true);
}

void Room::take_draft(const std::string& from, const std::string& folder, std::uint64_t added,
                      bool rewrites) {
  const auto source = place_of(from);
  const auto place = place_of(folder);
  if (!source || !source->size || !place || of(folder, place->device) == nullptr) {
    return;
  }
  FileSystem* const there = of(folder, place->device);
  const std::int64_t blocks = there->blocks_of(*source->size + static_cast<std::int64_t>(added));
  there->take(blocks, 1);
  if (rewrites) {
    copy(from, from, added);
  }
  of(folder, place->device)->take(-blocks, -1);  // the copy may have moved the list
}

bool Room::is_there() const {
  return std::all_of(file_systems_.begin(), file_systems_.end(), [](const FileSystem& one) {
    return one.most_blocks <= one.free_blocks && one.most_files <= one.free_files;
  });
}

bool has_room_for_copy(const std::string& from, const std::string& to) {
  Room room;
  room.copy(from, to);
  return room.is_there();
}

}  // namespace filesharing
