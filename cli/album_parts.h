// The parts of the group "album", and what they have in common.
#ifndef FILESHARE_ALBUM_PARTS_H
#define FILESHARE_ALBUM_PARTS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace fileshare {

// A folder of the album that a user may see.
struct AlbumFolder {
  std::string path;
  int right = 0;
};

// The folders of a user, in the order of the file; none for a user who is not there.
std::vector<AlbumFolder> folders_of(const std::string& user);

// 0, or the exit status once it has been said that there is no such user.
int require_album_user(const std::string& operation, const std::string& user);

void add_album_user_verbs(CLI::App& album);
void add_album_folder_verbs(CLI::App& album);

}  // namespace fileshare

#endif
