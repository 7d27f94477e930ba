// fileshare album ...: the settings of the photo album.
#include <sys/stat.h>

#include <optional>

#include "cli/album_parts.h"
#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/record_text.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/album.h"
#include "filesharing/media.h"

namespace fileshare {
namespace {

constexpr const char* kLink = "/etc/photo_album";
constexpr TextRule kMusic{"the music", 255, "", false};

struct SetArguments {
  std::optional<bool> enabled;
  std::optional<std::string> folder;
  std::optional<std::string> music;
};

// A doubled slash would leave the share without a name.
std::string reference_fault(const std::string& path) {
  if (path.find("//") != std::string::npos) return "a folder can not contain \"//\"";
  return folder_fault(path);
}

int read(PhotoAlbumConf& settings) {
  if (ReadPhotoAlbumConf(&settings) == 0) return kDone;
  return refuse(
      "can not read the settings of the album: the settings file or one of its keys is missing",
      kFailed);
}

int show(const JsonArguments& arguments) {
  PhotoAlbumConf settings{};
  if (const int status = read(settings); status != kDone) return status;
  print_record({{"enabled", settings.enabled != 0},
                {"folder", settings.path},
                {"music", settings.back_music}},
               arguments.json);
  return kDone;
}

int refuse_saving(const std::string& reason) {
  return refuse("can not save the settings of the album: " + reason, kFailed);
}

int require_folder(const PhotoAlbumConf& settings) {
  const int found = StripShareAndFolder(settings.path, nullptr, nullptr, 1);
  if (found == 0) return kDone;
  return refuse_saving("folder: there is no such " + std::string(found == -2 ? "folder" : "share"));
}

int set(const SetArguments& arguments) {
  PhotoAlbumConf settings{};
  // A settings file that never had an album gets one.
  if (!arguments.folder || !arguments.music) {
    if (const int status = read(settings); status != kDone) return status;
  } else {
    (void)ReadPhotoAlbumConf(&settings);
  }
  settings.enabled = arguments.enabled.value_or(settings.enabled != 0) ? 1 : 0;
  if (arguments.folder) fill(settings.path, *arguments.folder);
  if (arguments.music) fill(settings.back_music, *arguments.music);
  if (arguments.folder || settings.enabled != 0) {
    if (const int status = require_folder(settings); status != kDone) return status;
  }
  if (SavePhotoAlbumConf(&settings) == 0) return kDone;
  return refuse_saving("the settings file can not be written");
}

bool is_linked() {
  struct stat status {};
  return lstat(kLink, &status) == 0;
}

int apply(const NoArguments& /*none*/) {
  PhotoAlbumConf settings{};
  if (const int status = read(settings); status != kDone) return status;
  (void)ResetPhotoAlbum(&settings);  // it has no result: the link tells
  if (is_linked() == (settings.enabled != 0)) return kDone;
  return refuse(
      "can not apply the settings of the album: its share is gone, or /etc can not be written",
      kFailed);
}

void add_set(CLI::App& album) {
  auto& verb = add_verb(album, "set", "Change settings; the others stay", set);
  verb.footer("The web server follows with \"fileshare album apply\".");
  SetArguments& arguments = verb.arguments;
  add_switch(verb, "--enabled", arguments.enabled, "Whether the album is shown");
  verb.add_option("--folder", arguments.folder, "Its folder: /SHARE or /SHARE/FOLDER")
      ->check(reference_fault);
  verb.add_option("--music", arguments.music, "Music in the background, empty for none")
      ->check(follows(kMusic));
  verb.require_option();
}

}  // namespace

void add_album_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "album", "The photo album");
  auto& shown = add_verb(group, "show", "Show the settings", show);
  add_json(shown, shown.arguments.json);
  add_set(group);
  add_verb(group, "apply", "Make the web server's link follow the settings", apply);
  add_album_user_verbs(group);
  add_album_folder_verbs(group);
}

}  // namespace fileshare
