#include "cli/dead_change.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "cli/file_times.h"
#include "cli/guarded_files.h"
#include "filesharing/conf.h"

namespace fileshare {
namespace {

constexpr int kGroupChange = FSH_FILE_GROUP | FSH_FILE_USER;
constexpr int kUserChange =
    FSH_FILE_PASSWORD | FSH_FILE_GROUP | FSH_FILE_USER | FSH_FILE_SMBPASS | FSH_FILE_WEBPASS;

// What the library locks and copies together, a longer set before those that it begins with.
constexpr int kChanges[] = {
    kUserChange,  kUserChange & ~FSH_FILE_WEBPASS, kGroupChange | FSH_FILE_SMB,
    kGroupChange, FSH_FILE_SHARE | FSH_FILE_SMB,
};

struct Traces {
  int bit;
  std::string path;
  std::string copy;
  FileTime locked;
  FileTime copied;
  FileTime changed;
};

// The folder of the account files, by the place of the library's temporary files; empty without a
// configuration volume.
std::string account_folder() {
  const std::string text = temporary_pattern();
  const std::size_t end = text.find("/conf/");
  return end == std::string::npos ? "" : text.substr(0, end) + "/conf/";
}

std::vector<Traces> all_traces() {
  std::vector<Traces> all;
  const std::string folder = account_folder();
  for (const GuardedFile& file : guarded_files()) {
    if (file.bit == 0 || folder.empty()) continue;
    const std::string path = folder + file.copied;
    const std::string copy = path + ".ttt";
    all.push_back({file.bit, path, copy, written(file.lock_path), written(copy), written(path)});
  }
  return all;
}

std::vector<Traces> of_change(const std::vector<Traces>& all, int change) {
  std::vector<Traces> chosen;
  std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
               [change](const Traces& file) { return (file.bit & change) != 0; });
  return chosen;
}

// All locks are there, and the copies were taken under them. A change that ends removes its locks
// one by one, and one that is refused leaves a few: neither has them all.
bool holds_and_has_copied(const std::vector<Traces>& files) {
  const auto no_lock = [](const Traces& file) { return !file.locked; };
  if (files.empty() || std::any_of(files.begin(), files.end(), no_lock)) return false;
  return std::all_of(files.begin(), files.end(), [&](const Traces& file) {
    // What is not there could not be copied.
    return file.copied ? !is_before(*file.copied, *file.locked) : !file.changed;
  });
}

// The copies are taken before the first write, so until then one of them may be cut short.
bool has_written(const std::vector<Traces>& files) {
  return std::any_of(files.begin(), files.end(), [](const Traces& file) {
    return file.copied && (!file.changed || !is_before(*file.changed, *file.copied));
  });
}

int copied_of(const std::vector<Traces>& files) {
  int mask = 0;
  for (const Traces& file : files) mask |= file.copied ? file.bit : 0;
  return mask;
}

// The locks of a group change are also what is left of a user change that has given its first lock
// back. That one took the lock of Samba's passwords too, before its copies.
bool is_end_of_user_change(const std::vector<Traces>& all) {
  const std::vector<Traces> passwords = of_change(all, FSH_FILE_SMBPASS);
  const std::vector<Traces> groups = of_change(all, FSH_FILE_GROUP);
  return !passwords.empty() && passwords[0].locked && groups[0].locked && groups[0].copied &&
         !is_before(*passwords[0].locked, *groups[0].locked) &&
         !is_before(*groups[0].copied, *passwords[0].locked);
}

std::string content_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A change that died while it took its copies has written nothing else yet.
bool is_cut(const Traces& file) {
  return file.locked && file.copied && file.changed && !is_before(*file.copied, *file.locked) &&
         is_before(*file.changed, *file.copied) && content_of(file.path) != content_of(file.copy);
}

}  // namespace

bool drop_cut_copies() {
  bool dropped = true;
  for (const Traces& file : all_traces()) {
    if (is_cut(file)) dropped = std::filesystem::remove(file.copy) && dropped;
  }
  return dropped;
}

int half_done_files() {
  const std::vector<Traces> all = all_traces();
  int half_done = 0;
  int seen = 0;
  for (const int change : kChanges) {
    const std::vector<Traces> files = of_change(all, change);
    if ((change & seen) != 0 || !holds_and_has_copied(files)) continue;
    if (change == kGroupChange && is_end_of_user_change(all)) continue;
    seen |= change;
    if (has_written(files)) half_done |= copied_of(files);
  }
  return half_done;
}

}  // namespace fileshare
