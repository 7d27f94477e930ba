// Room on the file systems for what a change is about to write.
#ifndef FILESHARING_CONF_ROOM_H
#define FILESHARING_CONF_ROOM_H

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace filesharing {

// Goes through the writes of a change in their order, without writing, and remembers the most that
// each file system has to hold at a time. A path of which nothing can be found out needs no room
// here: the write itself will tell.
class Room {
 public:
  // `to` becomes what `from` is, with so many bytes more.
  void copy(const std::string& from, const std::string& to, std::uint64_t added = 0);

  // A copy of `from` with so many bytes more is made in a folder and goes again: a temporary file.
  void draft(const std::string& from, const std::string& folder, std::uint64_t added);

  // The same, and before it goes it is copied over the file.
  void rewrite(const std::string& from, const std::string& folder, std::uint64_t added);

  // A new file that is so many bytes longer takes the place of a file.
  void replace(const std::string& path, std::uint64_t added);

  // Whether there is room for all of it.
  bool is_there() const;

 private:
  struct FileSystem {
    dev_t device;
    std::int64_t block_size;
    std::int64_t free_blocks;
    std::int64_t free_files;
    std::int64_t blocks = 0;  // that the writes so far have taken
    std::int64_t most_blocks = 0;
    std::int64_t files = 0;
    std::int64_t most_files = 0;

    std::int64_t blocks_of(std::int64_t size) const { return (size + block_size - 1) / block_size; }
    void take(std::int64_t more_blocks, std::int64_t more_files);
  };

  FileSystem* of(const std::string& path, dev_t device);
  void take_draft(const std::string& from, const std::string& folder, std::uint64_t added,
                  bool rewrites);

  std::vector<FileSystem> file_systems_;
};

// Whether `to` can become what `from` is.
bool has_room_for_copy(const std::string& from, const std::string& to);

}  // namespace filesharing

#endif
