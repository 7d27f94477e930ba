// Looking up the users of the photo album.
#include "album/album_file.h"
#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/album.h"

namespace filesharing {
namespace {

constexpr int kInformationLimit = 128;
constexpr std::string_view kInformationKey = "information=";
constexpr int kAdministratorsRight = 2;

int count_users() {
  const Stream stream = open_stream(paths::kAlbumUsers, "r");
  int count = 0;
  for (PieceReader line(stream.get(), kLongestAlbumLine); line.next();) {
    count += is_header(line.text()) ? 1 : 0;
  }
  return count;
}

// Leaves the stream behind the user's header; false when there is none.
bool go_to_user(PieceReader& line, std::string_view user) {
  while (line.next()) {
    if (is_header_of(line.text(), user)) {
      return true;
    }
  }
  return false;
}

bool user_exists(std::string_view user) {
  const Stream stream = open_stream(paths::kAlbumUsers, "r");
  PieceReader line(stream.get(), kLongestAlbumLine);
  return go_to_user(line, user);
}

int fill_user(AlbumUserInfo& record) {
  const SettingsFile file(paths::kAlbumUsers);
  if (!file.opened()) {
    return 0;
  }
  const std::string name(field_text(record.name));
  if (!can_be_user(name)) {
    return -1;
  }
  const auto information = file.section(name.c_str()).text("information", kInformationLimit);
  return information && parse_information(*information, record) ? 0 : -1;
}

int right_of(std::string_view user, std::string_view folder) {
  if (user == "admin") {
    return kAdministratorsRight;
  }
  const Stream stream = open_stream(paths::kAlbumUsers, "r");
  PieceReader line(stream.get(), kLongestAlbumLine);
  for (bool more = go_to_user(line, user) && line.next(); more && !is_header(line.text());
       more = line.next()) {
    const FolderLine entry = parse_folder_line(line.text());
    if (entry.has_folder && entry.folder == folder) {
      return to_int(entry.right);
    }
  }
  return 0;
}

int read_users(AlbumUserInfo** head) {
  const Stream stream = open_stream(paths::kAlbumUsers, "r");
  if (!stream) {
    return -1;
  }
  CList<AlbumUserInfo> users(FreeAlbumUserList);
  std::optional<std::string> user;  // of the section, until its information has been read
  for (PieceReader line(stream.get(), kLongestAlbumLine); line.next();) {
    if (is_header(line.text())) {
      user = header_user(line.text());
    } else if (user && line.text().starts_with(kInformationKey)) {
      AlbumUserInfo& record = users.append();
      copy_field(record.name, *user);
      if (!parse_information(line.text().substr(kInformationKey.size()), record)) {
        return -1;
      }
      user.reset();
    }
  }
  *head = users.release();
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int NumOfAlbumUser(void) {
  return guarded(0, count_users);
}

int AlbumUserExist(const char* name) {
  return guarded(0, [&] { return !missing(name) && user_exists(name) ? 1 : 0; });
}

int GetAlbumUserInfo(AlbumUserInfo* record) {
  return with_record(record, fill_user);
}

int RightOfFolderOnAlbumUser(const char* name, const char* folder) {
  return name == nullptr || folder == nullptr ? 0
                                              : guarded(0, [&] { return right_of(name, folder); });
}

int GetAllAlbumUsers(AlbumUserInfo** head) {
  if (head == nullptr) {
    return -1;
  }
  *head = nullptr;
  return guarded(-1, [&] { return read_users(head); });
}

void FreeAlbumUserList(AlbumUserInfo* head) {
  free_list(head);
}
