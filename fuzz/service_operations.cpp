// Services, media servers and the photo album.
#include "filesharing/filesharing.h"
#include "fuzz/arguments.h"

namespace fuzz {
namespace {

void save_samba(Arguments& arguments) {
  SambaSettings settings = {};
  arguments.field(settings.msn_enable);
  settings.code_page = arguments.number();
  arguments.field(settings.wins_enable);
  arguments.field(settings.wins_server);
  arguments.field(settings.w_d_name);
  arguments.field(settings.printer_name);
  static_cast<void>(SaveSambaConf(&settings));
}

void read_samba(Arguments& /*arguments*/) {
  SambaSettings settings = {};
  static_cast<void>(ReadSambaConf(&settings));
}

void save_ftp(Arguments& arguments) {
  FtpSettings settings = {};
  static_cast<void>(ReadFTPConf(&settings));
  settings.port = arguments.number();
  settings.data_port = arguments.number();
  settings.language = arguments.number();
  settings.bandwidth = arguments.number();
  static_cast<void>(SaveFTPConf(&settings));
}

void save_afp(Arguments& arguments) {
  AfpSettings settings = {};
  static_cast<void>(ReadAFPConf(&settings));
  settings.enabled = arguments.number();
  arguments.field(settings.name);
  arguments.field(settings.unixcode);
  arguments.field(settings.tm_share);
  static_cast<void>(SetAFPDConf(settings));
  static_cast<void>(SaveAFPConf(&settings));
}

void save_itunes(Arguments& arguments) {
  ITunesSettings settings = {};
  static_cast<void>(ReadiTuneConf(&settings));
  arguments.field(settings.name);
  arguments.field(settings.path);
  static_cast<void>(SaveiTuneConf(&settings));
}

void save_broadcast(Arguments& arguments) {
  BroadcastSettings settings = {};
  static_cast<void>(ReadBroadConf(&settings));
  arguments.field(settings.name);
  arguments.field(settings.path);
  arguments.field(settings.play_method);
  settings.port = arguments.number();
  static_cast<void>(SaveBroadConf(&settings));
}

void save_upnp(Arguments& arguments) {
  UPnPAVSettings settings = {};
  static_cast<void>(ReadUPnPAVConf(&settings));
  arguments.field(settings.name);
  arguments.field(settings.folder_share[0]);
  arguments.field(settings.folder_path[0]);
  arguments.field(settings.folder_path[3]);
  static_cast<void>(SaveUPnPAVConf(&settings));
}

void resolve(Arguments& arguments) {
  const char* const reference = arguments.text();
  if (reference == nullptr) return;
  std::vector<char> share(std::strlen(reference) + 1);
  std::vector<char> folder(share.size());
  static_cast<void>(
      StripShareAndFolder(reference, share.data(), folder.data(), arguments.number()));
}

void stop_media(Arguments& arguments) {
  const int volume = arguments.number();
  const char* const prefix = arguments.text();
  static_cast<void>(StopMediaProcess(volume, prefix, arguments.number()));
}

void start_media(Arguments& arguments) {
  static_cast<void>(StartMediaProcess(static_cast<unsigned>(arguments.number())));
}

void stop_upnp(Arguments& arguments) {
  StopUPnPDaemon(nullptr, arguments.number());
}

void change_album(Arguments& arguments) {
  PhotoAlbumConf settings = {};
  static_cast<void>(ReadPhotoAlbumConf(&settings));
  static_cast<void>(ResetPhotoAlbum(&settings));
  arguments.field(settings.path);
  arguments.field(settings.back_music);
  settings.enabled = arguments.number();
  static_cast<void>(ResetPhotoAlbum(&settings));
  static_cast<void>(SavePhotoAlbumConf(&settings));
}

AlbumUserInfo album_user_of(Arguments& arguments) {
  AlbumUserInfo user = {};
  arguments.field(user.name);
  arguments.field(user.information1);
  arguments.field(user.information2);
  user.number1 = arguments.number();
  user.number2 = arguments.number();
  return user;
}

template <auto Function>
void with_album_user(Arguments& arguments) {
  AlbumUserInfo user = album_user_of(arguments);
  static_cast<void>(Function(&user));
}

void update_album_user(Arguments& arguments) {
  const char* const old_name = arguments.text();
  const AlbumUserInfo user = album_user_of(arguments);
  static_cast<void>(UpdateAlbumUser(old_name, &user));
}

void add_album_folder(Arguments& arguments) {
  const char* const name = arguments.text();
  const char* const folder = arguments.text();
  static_cast<void>(AddFolderToAlbumUser(name, folder, arguments.number()));
}

constexpr Operation kOperations[] = {
    {"AddAlbumUser", with_album_user<AddAlbumUser>},
    {"AddFolderToAlbumUser", add_album_folder},
    {"AlbumUserExist", with_text<AlbumUserExist>},
    {"CheckAlbumThumbFiles", with_text<CheckAlbumThumbFiles>},
    {"CheckPhotoAlbum", with_number<CheckPhotoAlbum>},
    {"DelAlbumUser", with_text<DelAlbumUser>},
    {"DelFolderFromAlbumUser", with_two_texts<DelFolderFromAlbumUser>},
    {"GetAlbumUserInfo", with_album_user<GetAlbumUserInfo>},
    {"GetAllAlbumUsers", with_head<GetAllAlbumUsers, FreeAlbumUserList, AlbumUserInfo>},
    {"IsFolderReadonly", with_text<IsFolderReadonly>},
    {"IsShUsedByTM", with_text<IsShUsedByTM>, Leaves::kStreams},
    {"NumOfAlbumUser", with_nothing<NumOfAlbumUser>},
    {"ReadSambaConf", read_samba},
    {"ReloadUPnPAVServerIP", with_nothing<ReloadUPnPAVServerIP>},
    {"RemoveDBOKFlag", with_nothing<RemoveDBOKFlag>},
    {"ResetAFP", with_nothing<ResetAFP>, Leaves::kStreams},
    {"ResetBroadcast", with_nothing<ResetBroadcast>},
    {"ResetFTP", with_nothing<ResetFTP>, Leaves::kStreams},
    {"ResetGuest", with_nothing<ResetGuest>},
    {"ResetHttps", with_nothing<ResetHttps>, Leaves::kStreams},
    {"ResetItune", with_nothing<ResetItune>},
    {"ResetPrinter", with_nothing<ResetPrinter>},
    {"ResetUPnPAV", with_number<ResetUPnPAV>},
    {"ResetUPnPAV2Def", with_nothing<ResetUPnPAV2Def>},
    {"ResetmDNSConf", with_nothing<ResetmDNSConf>, Leaves::kStreams},
    {"RightOfFolderOnAlbumUser", with_two_texts<RightOfFolderOnAlbumUser>},
    {"SaveAFPConf", save_afp, Leaves::kStreams},
    {"SaveBroadConf", save_broadcast},
    {"SaveFTPConf", save_ftp, Leaves::kStreams},
    {"SavePhotoAlbumConf", change_album},
    {"SaveSambaConf", save_samba},
    {"SaveUPnPAVConf", save_upnp},
    {"SaveiTuneConf", save_itunes},
    {"ScanUPnPAVServer", with_nothing<ScanUPnPAVServer>},
    {"SetSMB", with_nothing<SetSMB>},
    {"StartMediaProcess", start_media},
    {"StopAllMedia", with_nothing<StopAllMedia>},
    {"StopAllMedia1", with_nothing<StopAllMedia1>},
    {"StopMediaProcess", stop_media},
    {"StopUPnPDaemon", stop_upnp},
    {"StripShareAndFolder", resolve},
    {"UpdateAlbumUser", update_album_user},
    {"UpdateAlbumUserConf", with_text<UpdateAlbumUserConf>},
};

}  // namespace

const Operation* find_service_operation(std::string_view name) {
  return find_operation(kOperations, name);
}

}  // namespace fuzz
