#include "tests/faults/operations.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "filesharing/filesharing.h"
#include "tests/faults/devices.h"
#include "tests/faults/records.h"

namespace {

/* ---- Calls whose result is freed ------------------------------------------------------------ */

template <class Number, class Node>
unsigned listed(Number (*get)(Node**), void (*release)(Node*)) {
  Node* head = nullptr;
  const auto result = static_cast<unsigned>(get(&head));
  if (result == FSH_OK) release(head);
  return result;
}

template <class Record>
unsigned filled(unsigned (*get)(Record*), void (*release)(Record*), const char* name) {
  Record* const record = named<Record>(name);
  const unsigned result = get(record);
  if (result == FSH_OK) release(record);
  return result;
}

unsigned freed(void* block) {
  std::free(block);
  return FSH_OK;
}

unsigned stored_name(const char* folder, const char* name) {
  char* stored = nullptr;
  const int found = case_dir(folder, name, &stored);
  if (found == 1) std::free(stored);
  return static_cast<unsigned>(found);
}

unsigned group_shares(Arguments& a) {
  GroupShareInfo* const shares = GetGrpShares(group(a));
  FreeGrpShareInfo(shares);
  return freed(shares);
}

unsigned parsed_share(const char* value) {
  auto* const record = cleared<ShareInfo>();
  const unsigned result = ShareStringPar(value, record);
  if (result == FSH_OK) FreeShGrpList(record->groups);
  return result;
}

unsigned share_with_group(const char* name) {
  auto* const record = named<ShareInfo>(name);
  const unsigned result = GetShareWithGroup(record);
  if (result == FSH_OK) FreeShGrpList(record->groups);
  return result;
}

unsigned one_line(FILE* stream) {
  char* line = nullptr;
  const unsigned result = GetLineFromFile(&line, stream);
  std::free(line);
  return result;
}

unsigned reference(char* text) {
  static std::array<char, 20000> parts;
  return static_cast<unsigned>(
      StripShareAndFolder(text, parts.data(), parts.data() + parts.size() / 2, 0));
}

/* A folder, where translated paths are looked up. */
constexpr char kData[] = "/harddisk/volume_1/data";

const Texts kDave{"dave", "Dave Miller", "word-77"};
const Texts kFilms{"Films", "Films of the family", "/Films/", "family"};
const Texts kSamba{"yes", "no", "", "WORKGROUP", "lp"};
const Texts kAfp{"Server", "UTF8", "\"UTF8-MAC\"", "Music"};
const Texts kMedia{"Media", "Music", "/Music", "2.11"};
const Texts kEve{"eve", "Eve", "rose"};

#define CALL(...)                              \
  [](Arguments& a) {                           \
    (void)a;                                   \
    return static_cast<unsigned>(__VA_ARGS__); \
  }

/* ---- The functions, header by header -------------------------------------------------------- */

const std::vector<Operation> kUsers{
    {"AddUser", kDave, CALL(AddUser(user(a))), second_disk},
    {"DelAllUser", {}, CALL(DelAllUser()), two_users},
    {"DelUser", {"bob"}, CALL(DelUser(a[0])), second_disk},
    {"FreeUserList", {}, CALL(FreeUserList(nullptr), 0)},
    {"FreeUserNameList", {}, CALL(FreeUserNameList(nullptr), 0)},
    {"GetAllUser", {}, CALL(listed(GetAllUser, FreeUserList))},
    {"GetNumOfUsers", {}, CALL(GetNumOfUsers()), [] {}, {}, true},
    {"GetUserInfo", {"bob"}, CALL(GetUserInfo(named<UserInfo>(a[0])))},
    {"GetUserNameList", {}, CALL(listed(GetUserNameList, FreeUserNameList))},
    {"IsUserPassCorrect", {"bob", "correcthorsebattery"}, CALL(IsUserPassCorrect(a[0], a[1]))},
    {"SetUserQuota", {"bob"}, CALL(SetUserQuota(a[0], 5))},
    {"UpdateUser", {"dave", "Dave", "word-77", "bob"}, CALL(UpdateUser(a[3], user(a)))},
    {"UpdateUser", {"admin", "Boss", "word-77", "admin"}, CALL(UpdateUser(a[3], user(a)))},
    {"UserExist", {"bob"}, CALL(UserExist(a[0]))},
};

const std::vector<Operation> kGroups{
    {"AddGroup", {"club"}, CALL(AddGroup(a[0])), second_disk},
    {"AddUserToGroups",
     {"carol"},
     CALL(AddUserToGroups(a[0], a.list(), a.count())),
     [] {},
     {"staff"}},
    {"AddUsersToGroup",
     {"staff"},
     CALL(AddUsersToGroup(a[0], a.list(), a.count())),
     [] {},
     {"carol"}},
    {"AddUsersToSysGroup",
     {"staff"},
     CALL(AddUsersToSysGroup(a[0], a.list(), a.count())),
     [] {},
     {"carol"}},
    {"DelAllGRP",
     {"/etc/usrgrp.info"},
     CALL(DelAllGRP(a.list(), a.count(), a[0])),
     [] {},
     {"staff"}},
    {"DelAllGroup", {}, CALL(DelAllGroup())},
    {"DelGroup", {"family"}, CALL(DelGroup(a[0]))},
    {"DelUserFromGroups",
     {"alice"},
     CALL(DelUserFromGroups(a[0], a.list(), a.count())),
     [] {},
     {"staff", "family"}},
    {"DelUsersFromGroup",
     {"staff"},
     CALL(DelUsersFromGroup(a[0], a.list(), a.count())),
     [] {},
     {"alice", "bob"}},
    {"FreeGroupUserInfo", {}, CALL(FreeGroupUserInfo(nullptr), 0)},
    {"FreeGrpList", {}, CALL(FreeGrpList(nullptr), 0)},
    {"FreeGrpNameList", {}, CALL(FreeGrpNameList(nullptr), 0)},
    {"FreeGrpShareInfo", {}, CALL(FreeGrpShareInfo(nullptr), 0)},
    {"FreeGrpUsers", {}, CALL(FreeGrpUsers(nullptr), 0)},
    {"FreeShareGrpInfo", {}, CALL(FreeShareGrpInfo(nullptr), 0)},
    {"FreeUserGroupInfo", {}, CALL(FreeUserGroupInfo(nullptr), 0)},
    {"GetAllGroup", {}, CALL(listed(GetAllGroup, FreeGrpList))},
    {"GetGroupId", {"staff"}, CALL(GetGroupId(a[0])), [] {}, {}, true},
    {"GetGroupUserInfo", {"staff"}, CALL(filled(GetGroupUserInfo, FreeGroupUserInfo, a[0]))},
    {"GetGrpNameList", {}, CALL(listed(GetGrpNameList, FreeGrpNameList))},
    {"GetGrpShares", {"family"}, CALL(group_shares(a))},
    {"GetNumOfGrps", {}, CALL(GetNumOfGrps()), [] {}, {}, true},
    {"GetUserGroupInfo", {"alice"}, CALL(filled(GetUserGroupInfo, FreeUserGroupInfo, a[0]))},
    {"GroupExist", {"staff"}, CALL(GroupExist(a[0]))},
    {"RenameGroup", {"family", "clan"}, CALL(RenameGroup(a[0], a[1]))},
    {"SysActGroup", {"club"}, CALL(SysActGroup(a[0], FSH_ADD_GROUP))},
    {"SysActGroup", {"staff"}, CALL(SysActGroup(a[0], FSH_DELETE_GROUP))},
    {"SysDelAllGroup", {}, CALL(SysDelAllGroup(a.list(), a.count())), [] {}, {"staff"}},
    {"SysRenGroupName", {"staff", "crew"}, CALL(SysRenGroupName(a[0], a[1]))},
    {"UserInGroup", {"alice", "staff"}, CALL(UserInGroup(a[0], a[1]))},
};

const std::vector<Operation> kShares{
    {"AddGroupToShare", {"staff", "Music"}, CALL(AddGroupToShare(a[0], a[1], 1))},
    {"AddGroupToShares",
     {"staff"},
     CALL(AddGroupToShares(a[0], a.list(), a.count(), 0)),
     [] {},
     {"Music", "DISK 1"}},
    {"AddGroupsToShare",
     {"Projects"},
     CALL(AddGroupsToShare(a[0], a.list(), a.count(), 1)),
     [] {},
     {"family", "everyone"}},
    {"AddNFSShare", {"Music"}, CALL(AddNFSShare(a[0]))},
    {"AddShare", kFilms, CALL(AddShare(share(a)))},
    {"AddShareWithGroup", kFilms, CALL(AddShareWithGroup(share(a)))},
    {"AddWinShares", {"FLASH"}, CALL(AddWinShares(a[0], 0)), flash_disk},
    {"CheckNFSShare", {"Music", "10.0.0.1"}, CALL(CheckNFSShare(nfs(a)))},
    {"DelAllShare", {}, CALL(DelAllShare(1)), two_shares},
    {"DelAllShareFromSMB", {}, CALL(DelAllShareFromSMB())},
    {"DelGroupFromShare", {"family", "Music"}, CALL(DelGroupFromShare(a[0], a[1]))},
    {"DelGroupFromShares",
     {"everyone"},
     CALL(DelGroupFromShares(a[0], a.list(), a.count())),
     [] {},
     {"Music", "DISK 1"}},
    {"DelGroupsFromShare",
     {"Music"},
     CALL(DelGroupsFromShare(a[0], a.list(), a.count())),
     [] {},
     {"family", "everyone"}},
    {"DelNFSShare", {"Music"}, CALL(DelNFSShare(a[0]))},
    {"DelShare", {"Music"}, CALL(DelShare(a[0])), [] { set({"apple_tm_sh=Music"}); }},
    {"DelShareFromAFP", {"\"/harddisk/volume_1/data/Music/\""}, CALL(DelShareFromAFP(a[0]))},
    {"DelShareFromSMB", {"Music"}, CALL(DelShareFromSMB(a[0]))},
    {"DelWinShares", {"FLASH"}, CALL(DelWinShares(a[0], 0, 1)), flash_share},
    {"EveryoneInDiskSh", {}, CALL(EveryoneInDiskSh(1))},
    {"FreeNFSShList", {}, CALL(FreeNFSShList(nullptr), 0)},
    {"FreeShGrpList", {}, CALL(FreeShGrpList(nullptr), 0)},
    {"FreeShareList", {}, CALL(FreeShareList(nullptr), 0)},
    {"FreeShareNameList", {}, CALL(FreeShareNameList(nullptr), 0)},
    {"GetAllShare", {}, CALL(listed(GetAllShare, FreeShareList))},
    {"GetExtShare", {}, CALL(listed(GetExtShare, FreeShareList))},
    {"GetGroupShareInfo", {"family"}, CALL(filled(GetGroupShareInfo, FreeGrpShareInfo, a[0]))},
    {"GetNumOfShares", {}, CALL(GetNumOfShares()), [] {}, {}, true},
    {"GetPublicSh", {}, CALL(freed(GetPublicSh(1)))},
    {"GetShGroup", {"staff:7,family:5"}, CALL(FreeShGrpList(GetShGroup(a[0])), 0)},
    {"GetShareGroup", {"Music"}, CALL(filled(GetShareGroup, FreeShareGrpInfo, a[0]))},
    {"GetShareInfo", {"Music"}, CALL(GetShareInfo(named<ShareInfo>(a[0])))},
    {"GetShareNameList", {}, CALL(listed(GetShareNameList, FreeShareNameList))},
    {"GetShareWithGroup", {"Music"}, CALL(share_with_group(a[0]))},
    {"IsNFSEnabled", {}, CALL(IsNFSEnabled())},
    {"ReadNFSConf", {}, CALL(ReadNFSConf(cleared<unsigned>()))},
    {"ReadNFSShare", {"Music", ""}, CALL(ReadNFSShare(nfs(a)))},
    {"ReadNFSShares", {}, CALL(listed(ReadNFSShares, FreeNFSShList))},
    {"ResetNFSShares", {}, CALL(ResetNFSShares(7)), [] {}, {}, true},
    {"SaveNFSConf", {}, CALL(SaveNFSConf(&(*cleared<unsigned>() = 1)))},
    {"SetAFPShare", kFilms, CALL(SetAFPShare(share(a), 1))},
    {"SetSmbShare", kFilms, CALL(SetSmbShare(share(a), 1))},
    {"ShareExist", {"Music"}, CALL(ShareExist(a[0]))},
    {"ShareStringPar", {"0:1:Songs:/Music/:staff:7"}, CALL(parsed_share(a[0]))},
    {"UpdateNFSConf", {}, CALL(UpdateNFSConf(nullptr)), [] { put("/etc/exports", "/old\n"); }},
    {"UpdateNFSShare", {}, CALL(UpdateNFSShare())},
    {"UpdateShare", {"Films", "", "/Films/", "", "Music"}, CALL(UpdateShare(a[4], share(a)))},
    {"WriteAFPShare", kFilms, CALL(WriteAFPShare(share(a)))},
    {"WriteSmbShare", kFilms, CALL(WriteSmbShare(share(a)))},
    {"case_dir", {kData, "music"}, CALL(stored_name(a[0], a[1]))},
    {"dir_shared", {"/Music"}, CALL(dir_shared(a[0], 1))},
    {"getname", {"/Music/Pop"}, CALL(freed(getname(a[0])))},
    {"simple_trans_dir", {"/harddisk/volume_1/data/MUSIC"}, CALL(simple_trans_dir(a[0]))},
    {"trans_dir", {"/HARDDISK/volume_1/data/MUSIC"}, CALL(trans_dir(a[0]))},
    {"trans_dir_with_prefix",
     {kData, "/harddisk/volume_1/data/MUSIC"},
     CALL(trans_dir_with_prefix(a[0], a[1]))},
    {"trans_one_item", {kData, "MUSIC"}, CALL(trans_one_item(a[0], a[1]))},
    {"write_afp", kFilms, CALL(write_afp(share(a), a.stream(), 1), 0)},
    {"write_share", kFilms, CALL(write_share(share(a), a.stream(), 1), 0)},
};

const std::vector<Operation> kServices{
    {"IsShUsedByTM", {"Music"}, CALL(IsShUsedByTM(a[0]))},
    {"ReadAFPConf", {}, CALL(ReadAFPConf(cleared<AfpSettings>()))},
    {"ReadFTPConf", {}, CALL(ReadFTPConf(cleared<FtpSettings>()))},
    {"ReadSambaConf", {}, CALL(ReadSambaConf(cleared<SambaSettings>()))},
    {"ResetAFP", {}, CALL(ResetAFP()), [] { set({"apple_name=Mac"}); }},
    {"ResetFTP", {}, CALL(ResetFTP())},
    {"ResetGuest", {}, CALL(ResetGuest())},
    {"ResetHttps",
     {},
     CALL(ResetHttps()),
     [] {
       set({"https=yes", "port=8080"});
     }},
    {"ResetPrinter", {}, CALL(ResetPrinter())},
    {"ResetmDNSConf", {}, CALL(ResetmDNSConf()), [] { set({"port=8080"}); }},
    {"SaveAFPConf", kAfp, CALL(SaveAFPConf(afp(a)))},
    {"SaveFTPConf", {}, CALL(SaveFTPConf(cleared<FtpSettings>()))},
    {"SaveSambaConf", kSamba, CALL(SaveSambaConf(samba(a)))},
    {"SetAFPDConf", kAfp, CALL(SetAFPDConf(*afp(a)))},
    {"SetSMB", {}, CALL(SetSMB())},
    {"debug_afp", {"afpd"}, CALL(debug_afp("%s started", a[0]), 0)},
    {"omitIpSpace", {"10. 0. 0. 1"}, CALL(omitIpSpace(named<NfsShare>("")->host, a[0], 16), 0)},
};

const std::vector<Operation> kMediaServers{
    {"IsFolderReadonly", {"HDD_1_1"}, CALL(IsFolderReadonly(a[0]))},
    {"ReadBroadConf", {}, CALL(ReadBroadConf(cleared<BroadcastSettings>()))},
    {"ReadUPnPAVConf", {}, CALL(ReadUPnPAVConf(cleared<UPnPAVSettings>()))},
    {"ReadiTuneConf", {}, CALL(ReadiTuneConf(cleared<ITunesSettings>()))},
    {"ReloadUPnPAVServerIP", {}, CALL(ReloadUPnPAVServerIP()), media_files},
    {"RemoveDBOKFlag", {}, CALL(RemoveDBOKFlag(), 0), media_files},
    {"ResetBroadcast", {}, CALL(ResetBroadcast()), media_files},
    {"ResetItune", {}, CALL(ResetItune()), media_files},
    {"ResetUPnPAV", {}, CALL(ResetUPnPAV(0)), media_files},
    {"ResetUPnPAV2Def", {}, CALL(ResetUPnPAV2Def(), 0), media_files},
    {"SaveBroadConf", {"Radio", "/Music", "order"}, CALL(SaveBroadConf(broadcast(a)))},
    {"SaveUPnPAVConf", kMedia, CALL(SaveUPnPAVConf(upnp(a)))},
    {"SaveiTuneConf", {"Songs", "/Music"}, CALL(SaveiTuneConf(itunes(a)))},
    {"ScanUPnPAVServer", {}, CALL(ScanUPnPAVServer()), media_files},
    {"StartMediaProcess", {}, CALL(StartMediaProcess(13)), media_files},
    {"StopAllMedia", {}, CALL(StopAllMedia(), 0), media_files},
    {"StopAllMedia1", {}, CALL(StopAllMedia1(), 0), media_files},
    {"StopMediaProcess", {"Mus"}, CALL(StopMediaProcess(1, a[0], 1)), media_files, {}, true},
    {"StopUPnPDaemon", kMedia, CALL(StopUPnPDaemon(upnp(a), 1), 0), media_files},
    {"StripShareAndFolder", {"/Music/Pop"}, CALL(reference(a[0]))},
};

const std::vector<Operation> kAlbum{
    {"AddAlbumUser", kEve, CALL(AddAlbumUser(album_user(a)))},
    {"AddFolderToAlbumUser", {"visitor", "lake"}, CALL(AddFolderToAlbumUser(a[0], a[1], 1))},
    {"AlbumUserExist", {"alice"}, CALL(AlbumUserExist(a[0]))},
    {"CheckAlbumThumbFiles",
     {"/harddisk/volume_1/data/public/holiday"},
     CALL(CheckAlbumThumbFiles(a[0])),
     pictures},
    {"CheckPhotoAlbum", {}, CALL(CheckPhotoAlbum(1)), pictures},
    {"DelAlbumUser", {"alice"}, CALL(DelAlbumUser(a[0]))},
    {"DelFolderFromAlbumUser", {"alice", "garden"}, CALL(DelFolderFromAlbumUser(a[0], a[1]))},
    {"FreeAlbumUserList", {}, CALL(FreeAlbumUserList(nullptr), 0)},
    {"GetAlbumUserInfo", {"alice"}, CALL(GetAlbumUserInfo(named<AlbumUserInfo>(a[0])))},
    {"GetAllAlbumUsers", {}, CALL(listed(GetAllAlbumUsers, FreeAlbumUserList))},
    {"NumOfAlbumUser", {}, CALL(NumOfAlbumUser()), [] {}, {}, true},
    {"ReadPhotoAlbumConf", {}, CALL(ReadPhotoAlbumConf(cleared<PhotoAlbumConf>()))},
    {"ResetPhotoAlbum", {"/DISK 1", ""}, CALL(ResetPhotoAlbum(album(a)))},
    {"RightOfFolderOnAlbumUser",
     {"alice", "garden"},
     CALL(RightOfFolderOnAlbumUser(a[0], a[1])),
     [] {},
     {},
     true},
    {"SavePhotoAlbumConf", {"/Music", "/Music/a.mp3"}, CALL(SavePhotoAlbumConf(album(a)))},
    {"UpdateAlbumUser",
     {"eve", "Eve", "rose", "alice"},
     CALL(UpdateAlbumUser(a[3], album_user(a)))},
    {"UpdateAlbumUserConf", {"/holiday"}, CALL(UpdateAlbumUserConf(a[0])), pictures},
    {"de_dotdot", {"/a/b/../c"}, CALL(de_dotdot(a[0]))},
};

const std::vector<Operation> kToolkit{
    {"BackupConFiles", {}, CALL(BackupConFiles(3))},
    {"DelKeyFromConf", {"staff", "/etc/usrgrp.info"}, CALL(DelKeyFromConf(a[0], a[1]))},
    {"DelKeyItem", {"staff", "/etc/usrgrp.info"}, CALL(DelKeyItem(a[0], a[1], '='))},
    {"FSH_GetStr",
     {"[s]\nkey=value\n", "s", "key"},
     CALL(FSH_GetStr(a[1], a[2], named<NfsShare>("")->host, 16, a.stream()))},
    {"FSH_GetStrLen",
     {"[s]\nkey=value\n", "s", "key"},
     CALL(FSH_GetStrLen(a[1], a[2], a.stream())),
     [] {},
     {},
     true},
    {"FSH_GetStrNoCase",
     {"[s]\nkey=value\n", "s", "key"},
     CALL(FSH_GetStrNoCase(a[1], a[2], named<NfsShare>("")->host, 16, a.stream()))},
    {"GetLineFromFile", {std::string(300, 'x') + "\n"}, CALL(one_line(a.stream()))},
    {"GetTmpFileName", {}, CALL(GetTmpFileName(cleared<ShareInfo>()->path), 0)},
    {"GetUserName",
     {" alice,bob"},
     CALL(GetUserName(named<NfsShare>("")->host, 16, nullptr, a.stream()))},
    {"GotoUserName",
     {"staff:x:2000:alice\n"},
     CALL(GotoUserName(named<NfsShare>("")->host, 16, a.stream()))},
    {"ItemExist", {"bob", "/etc/passwd"}, CALL(ItemExist(a[0], a[1]))},
    {"Lock", {}, CALL(Lock(127)), [] {}, {}, true},
    {"ReadGroup",
     {"staff:x:2000:alice\n"},
     CALL(ReadGroup(named<NfsShare>("")->host, 16, a.stream(), nullptr)),
     [] {},
     {},
     true},
    {"RenameKey", {"staff", "crew", "/etc/usrgrp.info"}, CALL(RenameKey(a[0], a[1], a[2]))},
    {"RenameKey1", {"staff", "crew", "/etc/group"}, CALL(RenameKey1(a[0], a[1], a[2]))},
    {"RenameSect", {"Music", "Songs", "/etc/samba/smb.conf"}, CALL(RenameSect(a[0], a[1], a[2]))},
    {"RestoreConFiles", {}, CALL(RestoreConFiles(3)), backups},
    {"StripEndingSpace", {"text  \r\n"}, CALL(StripEndingSpace(a[0]), 0)},
    {"Unlock", {}, CALL(Unlock(3), 0), [] { Lock(3); }},
    {"UpdateDiskUserGroupInfo", {}, CALL(UpdateDiskUserGroupInfo(), 0), second_disk},
    {"logerr", {"It failed: 100 %%"}, CALL(logerr(a[0]), 0)},
    {"readvkey",
     {"staff:x\n"},
     CALL(readvkey(named<NfsShare>("")->host, 16, a.stream())),
     [] {},
     {},
     true},
};

}  // namespace

Arguments::Arguments(const Texts& texts, Strings list) : list_(std::move(list)) {
  const std::string content = texts.empty() ? "" : texts.front().value_or("");
  const int file = memfd_create("argument", MFD_CLOEXEC);
  (void)!write(file, content.data(), content.size());
  (void)lseek(file, 0, SEEK_SET);
  stream_ = fdopen(file, "r+");
  static char buffer[BUFSIZ];
  (void)std::setvbuf(stream_, buffer, _IOFBF, sizeof buffer);
  for (const Text& text : texts) texts_.push_back(text ? strdup(text->c_str()) : nullptr);
  for (const std::string& item : list_) pointers_.push_back(item.c_str());
}

Arguments::~Arguments() {
  for (char* text : texts_) std::free(text);
  (void)std::fclose(stream_);
}

const std::vector<Operation>& operations() {
  static const auto all = [] {
    std::vector<Operation> list;
    for (const auto* header :
         {&kUsers, &kGroups, &kShares, &kServices, &kMediaServers, &kAlbum, &kToolkit}) {
      list.insert(list.end(), header->begin(), header->end());
    }
    return list;
  }();
  return all;
}
