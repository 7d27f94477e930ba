#include "fuzz/changed_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "conf/text.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/outside.h"

namespace fuzz {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFiles[] = {
    "/etc/passwd",
    "/etc/group",
    "/etc/usrgrp.info",
    "/etc/share.info",
    "/etc/win_share.info",
    "/etc/samba/smb.conf",
    "/etc/samba/user_smb.conf",
    "/etc/samba/smbpasswd",
    "/etc/netatalk/AppleVolumes.conf",
    "/etc/nfs.info",
    "/etc/album_user.conf",
    "/etc/CGI_ds.conf",
    "/usr/local/CGI_ds.conf",
    "/etc/services",
    "/etc/inetd.conf",
    "/etc/vsftpd.conf",
    "/etc/mt-daapd.conf",
    "/etc/media.conf",
    "/etc/ample.conf",
    "/etc/stunnel.conf",
    "/etc/exports",
    "/etc/howl/mDNSResponder.conf",
    "/etc/netatalk/afpd.conf",
    "/home/httpd/html/Management/.htpasswd",
    "/harddisk/volume_1/conf/share.info",
    "/harddisk/volume_2/conf/share.info",
    "/var/run/media_server.pid",
    "/var/run/media_scan.pid",
    "/proc/mounts",
};

constexpr std::string_view kServed = "/proc/mounts";  // the kernel's: no file that can be written

struct DeviceFile {
  std::string path;
  std::string target;  // behind a symbolic link
  std::optional<std::string> pristine;
  std::optional<std::string> content;
};

std::optional<std::string> read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string{std::istreambuf_iterator<char>(file), {}};
}

std::vector<DeviceFile> device_files() {
  require(fs::exists("/run/stand_in"));  // it would change this machine: only in a device
  for (const char* const volume : {"1", "2", "5"}) {
    fs::create_directories(std::string("/harddisk/volume_") + volume + "/conf/tmp");
  }
  fs::create_directories("/harddisk/volume_1/data/Music/.Thumb_DB");
  std::vector<DeviceFile> files;
  for (const char* const path : kFiles) {
    files.push_back({path, fs::weakly_canonical(path), read_file(path), {}});
  }
  files.back().target = kServed;
  return files;
}

std::vector<DeviceFile>& files() {
  static std::vector<DeviceFile> all = device_files();
  return all;
}

DeviceFile* find(std::string_view path) {
  for (DeviceFile& file : files()) {
    if (file.path == path) return &file;
  }
  return nullptr;
}

void put(DeviceFile& file) {
  if (file.target == kServed) {
    if (!file.content) file.content = "";
    Outside::serve(kServed.data(), *file.content);
    return;
  }
  if (!file.content) {
    static_cast<void>(unlink(file.target.c_str()));  // perhaps it is not there
    return;
  }
  const int descriptor =
      open(file.target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644);
  require(descriptor >= 0);
  require(write(descriptor, file.content->data(), file.content->size()) ==
          static_cast<ssize_t>(file.content->size()));
  require(close(descriptor) == 0);
}

// Locks, temporary files and backups of the input before.
void remove_leftovers() {
  for (const char* const folder :
       {"/tmp", "/harddisk/volume_1/conf/tmp", "/harddisk/volume_1/conf",
        "/harddisk/volume_2/conf/tmp", "/harddisk/volume_5/conf/tmp", "/var"}) {
    const bool of_temporaries = std::string_view(folder).ends_with("tmp");
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename();
      if (!entry.is_regular_file() || name.starts_with("libFuzzer")) continue;
      if (of_temporaries || name.ends_with(".ttt") || name == "glb_dbg") fs::remove(entry.path());
    }
  }
}

}  // namespace

const char* changed_file(int number) {
  return kFiles[static_cast<unsigned>(number) % (std::size(kFiles) - 1)];
}

std::string_view set_files(std::string_view text) {
  for (DeviceFile& file : files()) file.content = file.pristine;
  remove_leftovers();
  const std::string_view whole = text;
  std::size_t head = text.npos;
  DeviceFile* current = nullptr;
  while (!text.empty()) {
    const std::size_t at = whole.size() - text.size();
    const std::string_view line = filesharing::take_line(text);
    DeviceFile* const named = line[0] == '@' || line[0] == '-'
                                  ? find(filesharing::without_line_end(line.substr(1)))
                                  : nullptr;
    if (named != nullptr) {
      head = std::min(head, at);
      current = named;
      current->content = line[0] == '@' ? std::optional<std::string>("") : std::nullopt;
    } else if (current != nullptr && current->content) {
      current->content->append(line);
    }
  }
  for (DeviceFile& file : files()) put(file);
  return whole.substr(0, head);
}

}  // namespace fuzz
