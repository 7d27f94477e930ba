#include "platform/profile/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace profile {
namespace {

constexpr mode_t kModeOfNewFile = 0644;
constexpr int kMostLinks = 40;  // as many as the kernel follows

// Owns a descriptor.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { (void)close(); }  // a path that counts on the result has closed it before
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] bool is_open() const { return fd_ >= 0; }
  [[nodiscard]] int get() const { return fd_; }
  bool close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_;
};

// A new file beside the target. Its name is hidden, so that nothing that reads the folder's
// configuration files takes it for one of them; it is removed unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder)
      : path_(folder + "/.profile-XXXXXX"), file_(mkostemp(path_.data(), O_CLOEXEC)) {}
  ~TemporaryFile() {
    // Nothing is left to try when the name can not be removed either.
    if (!renamed_ && made_) (void)unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  Descriptor& file() { return file_; }
  bool rename_to(const std::string& target) {
    renamed_ = rename(path_.c_str(), target.c_str()) == 0;
    return renamed_;
  }

 private:
  std::string path_;
  Descriptor file_;
  bool made_ = file_.is_open();
  bool renamed_ = false;
};

std::string folder_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The link's text, or nothing for anything but a symbolic link.
std::optional<std::string> link_text(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return std::nullopt;
  std::string text(PATH_MAX, '\0');
  const ssize_t length = readlink(path.c_str(), text.data(), text.size());
  if (length < 0) return std::nullopt;
  text.resize(static_cast<size_t>(length));
  return text;
}

// The file that a path leads to. Links are followed by hand: the last one may lead to a file that
// is yet to be made, which realpath(3) refuses.
std::optional<std::string> target_of(std::string path) {
  for (int links = 0; links <= kMostLinks; ++links) {
    const std::optional<std::string> link = link_text(path);
    if (!link) return path;
    path = link->starts_with('/') ? *link : folder_of(path) + "/" + *link;
  }
  return std::nullopt;
}

bool write_all(int fd, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(fd, content.data(), content.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) content.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

// Gives the new file the owner and mode of the old one, before there is anything in it to read.
// The owner comes first: changing it takes set-id bits away.
bool take_over_owner_and_mode(int fd, const std::string& target) {
  struct stat status {};
  if (stat(target.c_str(), &status) != 0) {
    return errno == ENOENT && fchmod(fd, kModeOfNewFile) == 0;
  }
  return S_ISREG(status.st_mode) && fchown(fd, status.st_uid, status.st_gid) == 0 &&
         fchmod(fd, status.st_mode & 07777) == 0;
}

bool fill(Descriptor& file, const std::string& target, std::string_view content) {
  return file.is_open() && take_over_owner_and_mode(file.get(), target) &&
         write_all(file.get(), content) && fsync(file.get()) == 0 && file.close();
}

}  // namespace

std::optional<std::string> read_whole_file(const char* path) {
  const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.is_open() || fstat(file.get(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return std::nullopt;
  }
  std::string content;
  char piece[4096];
  for (;;) {
    const ssize_t length = read(file.get(), piece, sizeof piece);
    if (length == 0) return content;
    if (length > 0) content.append(piece, static_cast<size_t>(length));
    if (length < 0 && errno != EINTR) return std::nullopt;
  }
}

bool replace_whole_file(const char* path, std::string_view content) {
  const std::optional<std::string> target = target_of(path);
  if (!target) return false;
  const std::string folder = folder_of(*target);
  // Opened before anything is made: afterwards there is no way back.
  const Descriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory.is_open()) return false;
  TemporaryFile temporary(folder);
  if (!fill(temporary.file(), *target, content) || !temporary.rename_to(*target)) return false;
  // The new file stands whatever this says, and some file systems can not sync a directory.
  (void)fsync(directory.get());
  return true;
}

}  // namespace profile
