/* Shares and access lists as text, to compare them at a glance, and the files that carry them. */
#ifndef TESTS_SHARE_RECORDS_H
#define TESTS_SHARE_RECORDS_H

#include <cstring>
#include <string>

#include "filesharing/shares.h"
#include "tests/device_test.h"

constexpr char kRegistry[] = "/etc/share.info";
constexpr char kRemovable[] = "/etc/win_share.info";
constexpr char kOnVolume[] = "/harddisk/volume_1/conf/share.info";
constexpr char kSmb[] = "/harddisk/volume_1/conf/smb.conf"; /* /etc/samba/smb.conf leads there */
constexpr char kAfp[] = "/etc/netatalk/AppleVolumes.conf";

/* Where a share stands, unless it is a removable one. */
constexpr const char* kShareFiles[] = {kRegistry, kOnVolume, kSmb, kAfp};

class ShareTest : public DeviceTest {
 protected:
  static Strings files() { return {read(kRegistry), read(kOnVolume), read(kSmb), read(kAfp)}; }

  static void expect_no_locks() {
    EXPECT_FALSE(exists("/tmp/share.lck"));
    EXPECT_FALSE(exists("/tmp/smb.lck"));
  }
};

/* " staff:7 family:5" */
inline std::string text_of(const ShareGroup* groups) {
  std::string text;
  for (; groups != nullptr; groups = groups->next) {
    text += std::string(" ") + groups->name + ":" + std::to_string(groups->rights);
  }
  return text;
}

/* "Music|0|1|Songs|/Music/| staff:7" */
inline std::string text_of(const ShareInfo& share) {
  return std::string(share.name) + "|" + std::to_string(share.suffixed) + "|" +
         std::to_string(share.volume) + "|" + share.comment + "|" + share.path + "|" +
         text_of(share.groups);
}

/* Sets the name and whatever else is given. */
inline ShareInfo share_record(const char* name, const char* comment = "", const char* path = "",
                              int volume = 0) {
  ShareInfo share{};
  strncpy(share.name, name, sizeof share.name - 1);
  strncpy(share.comment, comment, sizeof share.comment - 1);
  strncpy(share.path, path, sizeof share.path - 1);
  share.volume = volume;
  return share;
}

#endif
