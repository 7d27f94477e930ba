/* The records that calls take, made of texts; a long text fills its field to the last byte. */
#ifndef TESTS_FAULTS_RECORDS_H
#define TESTS_FAULTS_RECORDS_H

#include <cstring>

#include "filesharing/filesharing.h"
#include "tests/faults/operations.h"

template <size_t N>
inline void fill(char (&field)[N], const char* text) {
  std::memset(field, 0, N);
  if (text != nullptr) std::memcpy(field, text, strnlen(text, N));
}

template <class Record>
inline Record* cleared() {
  static Record record;
  std::memset(&record, 0, sizeof record);
  return &record;
}

template <class Record>
inline Record* named(const char* name) {
  auto* const record = cleared<Record>();
  fill(record->name, name);
  return record;
}

inline UserInfo* user(Arguments& a) {
  auto* const record = named<UserInfo>(a[0]);
  fill(record->description, a[1]);
  fill(record->password, a[2]);
  record->quota = 250;
  return record;
}

inline ShareInfo* share(Arguments& a) {
  static ShareGroup family{"family", FSH_READ_WRITE, nullptr};
  auto* const record = named<ShareInfo>(a[0]);
  fill(record->comment, a[1]);
  fill(record->path, a[2]);
  record->volume = 1;
  record->groups = &family;
  fill(family.name, a[3]);
  return record;
}

inline SambaSettings* samba(Arguments& a) {
  auto* const record = cleared<SambaSettings>();
  fill(record->msn_enable, a[0]);
  fill(record->wins_enable, a[1]);
  fill(record->wins_server, a[2]);
  fill(record->w_d_name, a[3]);
  fill(record->printer_name, a[4]);
  record->code_page = 437;
  return record;
}

inline AfpSettings* afp(Arguments& a) {
  auto* const record = named<AfpSettings>(a[0]);
  fill(record->unixcode, a[1]);
  fill(record->maccode, a[2]);
  fill(record->tm_share, a[3]);
  record->enabled = 1;
  return record;
}

inline UPnPAVSettings* upnp(Arguments& a) {
  auto* const record = named<UPnPAVSettings>(a[0]);
  fill(record->folder_share[0], a[1]);
  fill(record->folder_path[0], a[2]);
  fill(record->version, a[3]);
  record->enabled = record->folder_used[0] = 1;
  return record;
}

inline ITunesSettings* itunes(Arguments& a) {
  auto* const record = named<ITunesSettings>(a[0]);
  fill(record->path, a[1]);
  return record;
}

inline BroadcastSettings* broadcast(Arguments& a) {
  auto* const record = named<BroadcastSettings>(a[0]);
  fill(record->path, a[1]);
  fill(record->play_method, a[2]);
  return record;
}

inline PhotoAlbumConf* album(Arguments& a) {
  auto* const record = cleared<PhotoAlbumConf>();
  fill(record->path, a[0]);
  fill(record->back_music, a[1]);
  record->enabled = 1;
  return record;
}

inline AlbumUserInfo* album_user(Arguments& a) {
  auto* const record = named<AlbumUserInfo>(a[0]);
  fill(record->information1, a[1]);
  fill(record->information2, a[2]);
  return record;
}

inline NfsShare* nfs(Arguments& a) {
  auto* const record = named<NfsShare>(a[0]);
  fill(record->host, a[1]);
  record->mask = 24;
  return record;
}

inline GroupItem* group(Arguments& a) {
  return named<GroupItem>(a[0]);
}

#endif
