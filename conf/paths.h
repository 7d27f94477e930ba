// Every file and folder of the device that the library reads, writes or removes. Command lines
// stand where they are run.
#ifndef FILESHARING_CONF_PATHS_H
#define FILESHARING_CONF_PATHS_H

#include <string>

#include "conf/text.h"

namespace filesharing::paths {

// Account files.
inline constexpr char kPasswd[] = "/etc/passwd";
inline constexpr char kGroup[] = "/etc/group";
inline constexpr char kUserGroups[] = "/etc/usrgrp.info";
inline constexpr char kSmbPasswd[] = "/etc/samba/smbpasswd";
inline constexpr char kWebPasswd[] = "/home/httpd/html/Management/.htpasswd";
inline constexpr char kQuotaPrototype[] = "/tmp/edquota.tmp";

// Shares.
inline constexpr char kShares[] = "/etc/share.info";
inline constexpr char kRemovableShares[] = "/etc/win_share.info";
inline constexpr char kSmbConf[] = "/etc/samba/smb.conf";
inline constexpr char kRemovableSmbConf[] = "/etc/samba/user_smb.conf";
inline constexpr char kAppleVolumes[] = "/etc/netatalk/AppleVolumes.conf";
inline constexpr char kNfsShares[] = "/etc/nfs.info";
inline constexpr char kExports[] = "/etc/exports";

// Services.
inline constexpr char kSettings[] = "/etc/CGI_ds.conf";
inline constexpr char kFactorySettings[] = "/usr/local/CGI_ds.conf";
inline constexpr char kSmbUsers[] = "/etc/samba/smbusers";
inline constexpr char kServices[] = "/etc/services";
inline constexpr char kInetd[] = "/etc/inetd.conf";
inline constexpr char kVsftpd[] = "/etc/vsftpd.conf";
inline constexpr char kAfpd[] = "/etc/netatalk/afpd.conf";
inline constexpr char kMdnsResponder[] = "/etc/howl/mDNSResponder.conf";
inline constexpr char kStunnel[] = "/etc/stunnel.conf";
inline constexpr char kDebugLog[] = "/var/glb_dbg";
inline constexpr char kRestartInetd[] = "/etc/rc.d/rc.xinetd";

// Media servers and photo album.
inline constexpr char kMtDaapd[] = "/etc/mt-daapd.conf";
inline constexpr char kSongDatabase[] = "/tmp/songs.gdb";
inline constexpr char kAmple[] = "/etc/ample.conf";
inline constexpr char kMedia[] = "/etc/media.conf";
inline constexpr char kMediaServerPid[] = "/var/run/media_server.pid";
inline constexpr char kMediaScanPid[] = "/var/run/media_scan.pid";
inline constexpr char kStartMediaServer[] = "/etc/rc.d/mediaserver.sh";
inline constexpr char kTemporaryMediaDatabase[] = "/tmp/media.db";
inline constexpr char kPhotoAlbum[] = "/etc/photo_album";
inline constexpr char kAlbumUsers[] = "/etc/album_user.conf";

// Locks; those of the account and share files are in guarded_files.h.
inline constexpr char kSambaLock[] = "/tmp/samba.lck";
inline constexpr char kAlbumLock[] = "/tmp/album.lck";

// The system.
inline constexpr char kMounts[] = "/proc/mounts";
inline constexpr char kTemporaryTemplate[] = "/tmp/tmpfile.XXXXXX";
inline constexpr char kLvmDevice[] = "/dev/LVM/lv0";
inline constexpr char kRaidDevice[] = "/dev/md0";

// Volumes. A volume's data folder holds the shared folders, its conf folder the copies of the
// account files, its own list of shares and the media database.
inline std::string volume_data(int volume) {
  return format("/harddisk/volume_%d/data", volume);
}
inline std::string volume_conf(int volume) {
  return format("/harddisk/volume_%d/conf", volume);
}
inline std::string volume_shares(int volume) {
  return volume_conf(volume) + "/share.info";
}
inline std::string media_database(int volume) {
  return volume_conf(volume) + "/media.db";
}

}  // namespace filesharing::paths

#endif
