// Adding, changing and deleting the users of the photo album.
#include <cstring>
#include <tuple>

#include "album/album_file.h"
#include "album/album_lock.h"
#include "conf/appended_file.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/text.h"
#include "filesharing/album.h"
#include "filesharing/conf.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

constexpr int kFailed = -1;

// Runs a change under the album's lock.
template <class Change>
int locked(Change&& change) {
  const AlbumLock lock;
  return guarded(kFailed, change);
}

// A failed write is reported as success: the page shows the list anyway.
int append_user(const AlbumUserInfo& record) {
  const std::string name(field_text(record.name));
  std::ignore = append_to_file(paths::kAlbumUsers,
                               '[' + name + "]\ninformation=" + information_value(record) + '\n');
  return 0;
}

int change_user(const char* old_name, const AlbumUserInfo& record) {
  const std::string information = information_value(record);
  if (PRO_SetStr(old_name, "information", information.c_str(), paths::kAlbumUsers) != 0) {
    return kFailed;
  }
  const std::string new_name(field_text(record.name));
  if (new_name == old_name) {
    return 0;
  }
  return static_cast<int>(RenameSect(old_name, new_name.c_str(), paths::kAlbumUsers));
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int AddAlbumUser(const AlbumUserInfo* record) {
  return guarded(kFailed, [&] {
    if (record == nullptr || !can_be_user(field_text(record->name)) ||
        AlbumUserExist(std::string(field_text(record->name)).c_str()) != 0) {
      return kFailed;
    }
    return locked([&] { return append_user(*record); });
  });
}

int DelAlbumUser(const char* name) {
  if (AlbumUserExist(name) == 0) {
    return kFailed;
  }
  return locked([&] { return PRO_DelSect(name, paths::kAlbumUsers); });
}

int UpdateAlbumUser(const char* old_name, const AlbumUserInfo* record) {
  if (record == nullptr || AlbumUserExist(old_name) == 0 ||
      !can_be_user(field_text(record->name))) {
    return kFailed;
  }
  return locked([&] { return change_user(old_name, *record); });
}
