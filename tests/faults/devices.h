/* What stands on the device before a call, so that it has something to change. */
#ifndef TESTS_FAULTS_DEVICES_H
#define TESTS_FAULTS_DEVICES_H

#include <sys/mount.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/device_test.h"

struct Fixture : DeviceTest {
  using DeviceTest::mount_volume;
  using DeviceTest::read;
};

inline void put(const std::string& path, const std::string& content) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path) << content;
}

/* Gives keys of the settings file, "itune=no", another value. */
inline void set(const Strings& lines) {
  constexpr char kSettings[] = "/etc/CGI_ds.conf";
  std::string text = Fixture::read(kSettings);
  for (const std::string& line : lines) {
    const size_t at = text.find("\n" + line.substr(0, line.find('=') + 1)) + 1;
    text.replace(at, text.find('\n', at) - at, line);
  }
  put(kSettings, text);
}

/* Besides those that stay. */
inline void two_users() {
  const std::string text = Fixture::read("/etc/passwd");
  const size_t bob = text.find("bob:"), carol = text.find("carol:");
  put("/etc/passwd", text.substr(0, bob) + text.substr(carol));
}

inline void two_shares() {
  std::string text = Fixture::read("/etc/share.info");
  put("/etc/share.info", text.substr(0, text.find("Projects=")));
}

inline void second_disk() {
  Fixture::mount_volume(2);
}

inline void flash_disk() {
  const char* const folder = "/harddisk/volume_3/data/FLASH_1_1";
  Fixture::mount_volume(3);
  std::filesystem::create_directories(folder);
  (void)mount("disk", folder, "tmpfs", 0, "");
}

inline void flash_share() {
  flash_disk();
  put("/etc/win_share.info", "FLASH_1_1=0:3:USB:/FLASH_1_1/:everyone:7\n");
  put("/etc/samba/user_smb.conf", "[FLASH_1_1]\npath=/harddisk/volume_3/data/FLASH_1_1/\n");
  put("/etc/netatalk/AppleVolumes.conf",
      "\"/harddisk/volume_3/data/FLASH_1_1/\" \"[FLASH_1_1]\"  rwlist:@everyone allow:@everyone\n");
}

/* Of a file system in memory; each page has 4 KiB. */
inline void set_free_pages(const std::string& folder, unsigned long pages) {
  constexpr unsigned long kPage = 4096;
  struct statvfs room = {};
  ASSERT_EQ(statvfs(folder.c_str(), &room), 0);
  const std::string size = "size=" + std::to_string((room.f_blocks - room.f_bfree + pages) * kPage);
  ASSERT_EQ(mount("full", folder.c_str(), "tmpfs", MS_REMOUNT, size.c_str()), 0);
}

inline void backups() {
  for (const char* name : {"passwd", "group", "usrgrp.info", "share.info", "smb.conf"}) {
    put(std::string("/harddisk/volume_1/conf/") + name + ".ttt", "saved\n");
  }
}

inline void media_files() {
  put("/var/run/media_server.pid", "4242\n");
  put("/var/run/media_scan.pid", "4243\n");
  put("/harddisk/volume_1/conf/media.db/media_server.db", "songs");
  put("/harddisk/volume_1/conf/media.db/db_ok", "");
  put("/tmp/songs.gdb", "songs");
  set({"music_broad=yes"});
}

/* One of the thumbnails has no picture; with more, the order would be the folder's. */
inline void pictures() {
  set({"album_enable=yes"});
  put("/harddisk/volume_1/data/public/holiday/a.jpg", "a");
  put("/harddisk/volume_1/data/public/holiday/.Thumb_DB/Thumbnail_a.jpg", "a");
  put("/harddisk/volume_1/data/public/holiday/.Thumb_DB/Thumbnail_b.jpg", "b");
}

#endif
