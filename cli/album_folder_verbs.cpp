// fileshare album folder ...: which folders of the photo album its users may see.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

#include "cli/album_parts.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "filesharing/album.h"
#include "filesharing/conf.h"
#include "filesharing/media.h"
#include "platform/profile/profile.h"

namespace fileshare {
namespace {

constexpr const char* kUsersFile = "/etc/album_user.conf";
constexpr std::string_view kEntryKey = "album=";
constexpr const char* kNotWritten =
    "the file of the album's users can not be opened or written; when it could not be written, "
    "the lock stays (see lock clear)";
constexpr TextRule kAnyFolder{"a folder", 1000, "", false};

struct ListArguments {
  std::string user;
  bool json = false;
};

struct FolderArguments {
  std::string user;
  std::string folder;
  int32_t right = 1;
};

struct PruneArguments {
  std::string sub;
};

// Relative to the album: a folder that begins with "/" would be looked for from the root.
std::string entry_fault(const std::string& path) {
  if (path.empty()) return "a folder can not be empty";
  if (path.front() == '/') return "a folder of the album can not begin with \"/\"";
  return folder_fault('/' + path);
}

// The line without its end, in memory of its own.
bool read_line(std::FILE* stream, std::string& text) {
  char* line = nullptr;
  if (GetLineFromFile(&line, stream) != FSH_OK) return false;
  text = line;
  std::free(line);
  text.erase(text.find_last_not_of("\r\n") + 1);
  return true;
}

std::string operation_on(const char* verb, const FolderArguments& arguments) {
  return std::string(verb) + " folder " + in_quotes(arguments.folder) + " of album user " +
         in_quotes(arguments.user);
}

int refuse_operation(const std::string& operation, const std::string& reason) {
  return refuse("can not " + operation + ": " + reason, kFailed);
}

int list_folders(const ListArguments& arguments) {
  const std::string operation = "list the folders of album user " + in_quotes(arguments.user);
  const int status = require_album_user(operation, arguments.user);
  if (status != kDone) return status;
  Json list = Json::array();
  for (const AlbumFolder& folder : folders_of(arguments.user)) {
    list.push_back({{"folder", folder.path}, {"right", folder.right}});
  }
  print_list(list, {"folder", "right"}, arguments.json);
  return kDone;
}

// The entry for this very folder; null when the user has none.
const AlbumFolder* find_folder(const std::vector<AlbumFolder>& folders, const std::string& path) {
  const auto found = std::find_if(folders.begin(), folders.end(),
                                  [&](const AlbumFolder& folder) { return folder.path == path; });
  return found == folders.end() ? nullptr : &*found;
}

int add_folder(const FolderArguments& arguments) {
  const std::string operation = operation_on("add", arguments);
  const int status = require_album_user(operation, arguments.user);
  if (status != kDone) return status;
  const std::vector<AlbumFolder> folders = folders_of(arguments.user);
  if (const AlbumFolder* present = find_folder(folders, arguments.folder)) {
    // The library would leave the old right and tell nobody.
    return refuse_operation(operation, "it is there, with right " + std::to_string(present->right));
  }
  const int result =
      AddFolderToAlbumUser(arguments.user.c_str(), arguments.folder.c_str(), arguments.right);
  return report(operation, static_cast<unsigned>(result), {{FSH_FAILED, kNotWritten}});
}

int remove_folder(const FolderArguments& arguments) {
  const std::string operation = operation_on("remove", arguments);
  const int status = require_album_user(operation, arguments.user);
  if (status != kDone) return status;
  if (find_folder(folders_of(arguments.user), arguments.folder) == nullptr) {
    return refuse_operation(operation, "the user does not have it");
  }
  const int result = DelFolderFromAlbumUser(arguments.user.c_str(), arguments.folder.c_str());
  return report(operation, static_cast<unsigned>(result), {{FSH_FAILED, kNotWritten}});
}

int prune(const PruneArguments& arguments) {
  const std::string operation = "prune the folders of the album's users";
  PhotoAlbumConf settings{};
  static_cast<void>(ReadPhotoAlbumConf(&settings));  // the folder is there without the music, too
  // Without an album the library changes nothing and tells nobody.
  if (StripShareAndFolder((settings.path + arguments.sub).c_str(), nullptr, nullptr, 1) != 0) {
    return refuse_operation(operation, "the album's folder is not there");
  }
  return report(operation, static_cast<unsigned>(UpdateAlbumUserConf(arguments.sub.c_str())),
                {{FSH_FAILED, kNotWritten}});
}

void add_user(CLI::App& verb, std::string& user) {
  add_name(verb, user, "USER", "A user of the album", kUserName);
}

}  // namespace

std::vector<AlbumFolder> folders_of(const std::string& user) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(kUsersFile, "re"),
                                                             std::fclose);
  std::vector<AlbumFolder> folders;
  if (!file || PRO_2sect(user.c_str(), file.get()) != 0) return folders;
  std::string line;
  while (read_line(file.get(), line) && line.rfind('[', 0) != 0) {
    const std::size_t colon = line.find(':');
    if (line.rfind(kEntryKey, 0) != 0 || colon == std::string::npos) continue;
    const std::string path = line.substr(colon + 1);
    folders.push_back({path, RightOfFolderOnAlbumUser(user.c_str(), path.c_str())});
  }
  return folders;
}

void add_album_folder_verbs(CLI::App& album) {
  CLI::App& group = add_group(album, "folder", "Folders that the album's users may see");
  auto& list = add_verb(group, "list", "List a user's folders", list_folders);
  list.footer("The user admin has right 2 on every folder.");
  add_user(list, list.arguments.user);
  add_json(list, list.arguments.json);
  auto& add = add_verb(group, "add", "Let a user see a folder", add_folder);
  add_user(add, add.arguments.user);
  add.add_option("FOLDER", add.arguments.folder, "A folder below the album's")
      ->required()
      ->check(entry_fault);
  add.add_option("--right", add.arguments.right, "The user's right there; 1 unless given")
      ->check(CLI::Range(0, std::numeric_limits<int32_t>::max()));
  auto& remove = add_verb(group, "remove", "Take a folder away from a user", remove_folder);
  add_user(remove, remove.arguments.user);
  remove.add_option("FOLDER", remove.arguments.folder, "The folder, as it is listed")
      ->required()
      ->check(follows(kAnyFolder));
  auto& pruned = add_verb(group, "prune", "Drop the folders that are gone, for all users", prune);
  pruned.add_option("SUB", pruned.arguments.sub, "/FOLDER that they lie in, below the album's")
      ->check(folder_fault);
}

}  // namespace fileshare
