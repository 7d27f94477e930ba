#include "cli/share_repair.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/utf8.h"
#include "filesharing/conf.h"
#include "filesharing/shares.h"

namespace fileshare {
namespace {

constexpr const char* kRegistry = "/etc/share.info";
constexpr const char* kSmbConf = "/etc/samba/smb.conf";
constexpr const char* kAppleVolumes = "/etc/netatalk/AppleVolumes.conf";
constexpr int kLastVolume = 5;

// With a line feed before it, so that each line has one at both ends.
std::string text_of(const std::string& path) {
  std::ostringstream text;
  text << '\n' << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool is_there(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

std::string volume_folder(int volume) {
  return "/harddisk/volume_" + std::to_string(volume);
}

std::string list_of(int volume) {
  return volume_folder(volume) + "/conf/share.info";
}

std::string data_of(int volume) {
  return volume_folder(volume) + "/data";
}

class Registry {
 public:
  Registry() : code_(GetAllShare(&head_)) {}
  ~Registry() { FreeShareList(head_); }
  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  [[nodiscard]] unsigned code() const { return code_; }
  [[nodiscard]] const ShareInfo* first() const { return head_; }

  template <class Test>
  [[nodiscard]] bool any(Test test) const {
    for (const ShareInfo* share = head_; share != nullptr; share = share->next) {
      if (test(*share)) return true;
    }
    return false;
  }

 private:
  ShareInfo* head_ = nullptr;
  unsigned code_;
};

bool is_removable(const std::string& name) {
  return name.starts_with("FLASH") || name.starts_with("HDD");
}

// The share's name in the list of its volume, as shares.h tells it.
std::string name_on_volume(const ShareInfo& share) {
  std::string name = share.name;
  if (share.suffixed != 0) name = name.substr(0, name.rfind('~'));
  const std::string path = share.path;
  const bool is_public = path == "/" || path == "/public" || path == "/public/";
  if (is_public && std::string(share.name).find_first_of("12") != std::string::npos) {
    name = name.substr(0, name.rfind(' '));
  }
  return name;
}

// What a function of the library writes about a share to a stream.
std::string rendered(void (*write)(const ShareInfo*, FILE*, unsigned), const ShareInfo& share) {
  char* text = nullptr;
  std::size_t length = 0;
  FILE* out = open_memstream(&text, &length);
  if (out == nullptr) return {};
  write(&share, out, 0);
  if (std::fclose(out) != 0) length = 0;
  std::string result(text, length);
  std::free(text);
  return result;
}

// "\"FOLDER\" \"[NAME]\"": the lists behind it have more than one form.
std::string afp_entry(const ShareInfo& share) {
  const std::string line = rendered(write_afp, share);
  return line.substr(0, line.find("]\"") + 2);
}

// What is told about the shares, read once for all of them.
struct Entries {
  std::string smb = text_of(kSmbConf);
  std::string afp = text_of(kAppleVolumes);
  std::map<int, std::string> lists;  // by volume
};

bool is_complete(const ShareInfo& share, Entries& entries) {
  std::string& list = entries.lists[share.volume];
  if (list.empty()) list = text_of(list_of(share.volume));
  const std::string name = share.name;
  return is_there(data_of(share.volume) + share.path) &&
         holds(list, '\n' + name_on_volume(share) + '=' + share.comment + ':' + share.path) &&
         holds(entries.smb, "\n[" + name + "]\n" + rendered(write_share, share)) &&
         holds(entries.afp, '\n' + afp_entry(share));
}

// A line in the list of a volume.
struct Listed {
  std::string name;
  std::string path;
  int volume;
};

std::vector<Listed> listed_shares(int volume) {
  std::vector<Listed> all;
  std::ifstream list(list_of(volume));
  for (std::string line; std::getline(list, line);) {
    const std::size_t name = line.find('=');
    const std::size_t comment = line.find(':', name);
    if (name == std::string::npos || comment == std::string::npos) continue;
    const std::size_t path = line.find(':', comment + 1);
    all.push_back({line.substr(0, name), line.substr(comment + 1, path - comment - 1), volume});
  }
  return all;
}

bool has_section(const std::string& name) {
  FILE* file = std::fopen(kSmbConf, "re");
  if (file == nullptr) return false;
  const auto length = static_cast<int>(FSH_GetStrLen(name.c_str(), "path", file));
  (void)std::fclose(file);  // it was read only
  return length >= 0;
}

// A disk from another server lists shares that are not registered here: those have no section.
bool is_left_over(const Registry& registry, const Listed& listed) {
  const auto is_it = [&](const ShareInfo& share) {
    return share.volume == listed.volume && name_on_volume(share) == listed.name;
  };
  return !registry.any(is_it) && has_section(listed.name);
}

// One that was emptied, cut short or can not be parsed would have every share dropped.
bool is_whole(const Registry& registry) {
  return text_of(kRegistry).ends_with('\n') &&
         registry.any([](const ShareInfo& share) { return !is_removable(share.name); });
}

int drop(const Registry& registry, const Listed& listed) {
  const std::string operation = "drop what is left of share " + in_quotes(listed.name);
  const char* name = listed.name.c_str();
  const bool registered =
      registry.any([&](const ShareInfo& share) { return share.name == listed.name; });
  const std::string folder = '"' + data_of(listed.volume) + listed.path + '"';
  unsigned code = registered ? unsigned{FSH_OK} : DelShareFromSMB(name);
  if (code == FSH_OK && dir_shared(listed.path.c_str(), listed.volume) == 0) {
    code = DelShareFromAFP(folder.c_str());
  }
  if (code == FSH_OK) code = DelKeyItem(name, list_of(listed.volume).c_str(), '=');
  if (code == FSH_OK) std::cout << "dropped what was left of share " << in_quotes(name) << '\n';
  return report(operation, code);
}

int complete(const ShareInfo& share) {
  ShareInfo record = share;
  const unsigned code = UpdateShare(share.name, &record);
  if (code == FSH_OK) std::cout << "completed share " << in_quotes(share.name) << '\n';
  return report("complete share " + in_quotes(share.name), code,
                {{FSH_SHARE_EXISTS, "another change is going on"}});
}

}  // namespace

int drop_unregistered_shares() {
  const Registry registry;
  if (registry.code() != FSH_OK) return report("read the list of shares", registry.code());
  int status = kDone;
  for (int volume = 1; volume <= kLastVolume; ++volume) {
    for (const Listed& listed : listed_shares(volume)) {
      if (!is_left_over(registry, listed)) continue;
      if (!is_whole(registry)) {
        return refuse(std::string(kRegistry) + " is not whole: nothing of the shares was changed",
                      kFailed);
      }
      if (drop(registry, listed) != kDone) status = kFailed;
    }
  }
  return status;
}

int complete_shares() {
  const Registry registry;
  if (registry.code() != FSH_OK) return report("read the list of shares", registry.code());
  Entries entries;
  int status = kDone;
  for (const ShareInfo* share = registry.first(); share != nullptr; share = share->next) {
    const bool is_fixed = !is_removable(share->name) && is_there(data_of(share->volume));
    if (!is_fixed || is_complete(*share, entries)) continue;
    if (complete(*share) != kDone) status = kFailed;
  }
  return status;
}

}  // namespace fileshare
