// Adding, changing and deleting the users of the photo album and the folders that they may see.
#include <tuple>

#include "album/album_file.h"
#include "conf/appended_file.h"
#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/text.h"
#include "filesharing/album.h"
#include "filesharing/conf.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

// A failed write is reported as success: the page shows the list anyway.
int add_user(const AlbumUserInfo& record) {
  const std::string name(field_text(record.name));
  if (!can_be_user(name) || AlbumUserExist(name.c_str()) != 0) {
    return -1;
  }
  const AlbumLock lock;
  std::ignore = append_to_file(paths::kAlbumUsers,
                               '[' + name + "]\ninformation=" + information_value(record) + '\n');
  return 0;
}

int delete_user(const char* name) {
  if (AlbumUserExist(name) == 0) {
    return -1;
  }
  const AlbumLock lock;
  return PRO_DelSect(name, paths::kAlbumUsers);
}

int update_user(const char* old_name, const AlbumUserInfo& record) {
  const std::string new_name(field_text(record.name));
  if (AlbumUserExist(old_name) == 0 || !can_be_user(new_name)) {
    return -1;
  }
  const AlbumLock lock;
  const std::string information = information_value(record);
  if (PRO_SetStr(old_name, "information", information.c_str(), paths::kAlbumUsers) != 0) {
    return -1;
  }
  if (new_name == old_name) {
    return 0;
  }
  return static_cast<int>(RenameSect(old_name, new_name.c_str(), paths::kAlbumUsers));
}

int change_folders(const EditText& edit) {
  AlbumLock lock;
  // Kept: the temporary file stays behind a copy that succeeded.
  return lock.end_rewrite(rewrite_text(paths::kAlbumUsers, {}, {.leaves_temporary = true}, edit));
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int AddAlbumUser(const AlbumUserInfo* record) {
  return with_record(record, add_user);
}

int DelAlbumUser(const char* name) {
  return guarded(-1, [&] { return delete_user(name); });
}

int UpdateAlbumUser(const char* old_name, const AlbumUserInfo* record) {
  return with_record(record, [&](const auto& given) { return update_user(old_name, given); });
}

int AddFolderToAlbumUser(const char* name, const char* folder, int right) {
  if (name == nullptr || folder == nullptr) {
    return -1;
  }
  return guarded(-1, [&] {
    return change_folders(
        [&](std::string_view text) { return with_folder(text, name, folder, right); });
  });
}

int DelFolderFromAlbumUser(const char* name, const char* folder) {
  if (name == nullptr || folder == nullptr) {
    return -1;
  }
  return guarded(-1, [&] {
    return change_folders(
        [&](std::string_view text) { return without_folder(text, name, folder); });
  });
}
