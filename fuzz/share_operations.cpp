// Shares, their access lists, sections and folders, and NFS.
#include "filesharing/filesharing.h"
#include "fuzz/arguments.h"
#include "fuzz/fuzz_input.h"

namespace fuzz {
namespace {

ShareInfo share_of(Arguments& arguments) {
  ShareInfo share = {};
  arguments.field(share.name);
  arguments.field(share.comment);
  arguments.field(share.path);
  share.volume = arguments.number();
  share.suffixed = arguments.number();
  return share;
}

template <auto Function>
void with_share(Arguments& arguments) {
  ShareInfo share = share_of(arguments);
  static_cast<void>(Function(&share));
}

// With an access list, behind the other arguments.
template <auto Function>
void with_access_list(Arguments& arguments) {
  ShareInfo share = share_of(arguments);
  ShareGroup* const groups = GetShGroup(arguments.text());
  share.groups = groups;
  static_cast<void>(Function(&share));
  FreeShGrpList(groups);
}

void update_share(Arguments& arguments) {
  const char* const old_name = arguments.text();
  ShareInfo share = share_of(arguments);
  static_cast<void>(UpdateShare(old_name, &share));
}

void get_share_with_group(Arguments& arguments) {
  ShareInfo share = share_of(arguments);
  if (GetShareWithGroup(&share) == FSH_OK) FreeShGrpList(share.groups);
}

void get_public_share(Arguments& arguments) {
  std::free(GetPublicSh(arguments.number()));
}

void is_shared(Arguments& arguments) {
  const char* const path = arguments.text();
  static_cast<void>(dir_shared(path, arguments.number()));
}

void add_group_to_share(Arguments& arguments) {
  const char* const group = arguments.text();
  const char* const share = arguments.text();
  static_cast<void>(AddGroupToShare(group, share, arguments.number()));
}

template <auto Function>
void granted(Arguments& arguments) {
  const char* const name = arguments.text();
  const int read_only = arguments.number();
  const std::vector<const char*> list = arguments.texts();
  static_cast<void>(Function(name, list.data(), static_cast<int>(list.size()), read_only));
}

void add_removable(Arguments& arguments) {
  const char* const prefix = arguments.text();
  static_cast<void>(AddWinShares(prefix, arguments.number()));
}

void delete_removable(Arguments& arguments) {
  const char* const prefix = arguments.text();
  const int index = arguments.number();
  static_cast<void>(DelWinShares(prefix, index, arguments.number() % 5));
}

// Rewritten in place, in memory of exactly its size.
template <auto Function>
void path_in_place(Arguments& arguments) {
  const char* const text = arguments.text();
  std::vector<char> path = exact_copy(text == nullptr ? "" : text);
  static_cast<void>(Function(path.data()));
}

void behind_prefix(Arguments& arguments) {
  const char* const prefix = arguments.text();
  const char* const text = arguments.text();
  std::vector<char> path = exact_copy(text == nullptr ? "" : text);
  static_cast<void>(trans_dir_with_prefix(prefix, path.data()));
}

void in_folder(Arguments& arguments) {
  const char* const folder = arguments.text();
  const char* const text = arguments.text();
  std::vector<char> name = exact_copy(text == nullptr ? "" : text);
  static_cast<void>(trans_one_item(folder, name.data()));
  char* stored = nullptr;
  if (case_dir(folder, name.data(), &stored) == 1) std::free(stored);
  std::free(getname(name.data()));
}

void save_nfs(Arguments& arguments) {
  const unsigned enabled = static_cast<unsigned>(arguments.number());
  static_cast<void>(SaveNFSConf(&enabled));
}

void read_nfs(Arguments& arguments) {
  NfsShare entry = {};
  arguments.field(entry.name);
  static_cast<void>(ReadNFSShare(&entry));
  static_cast<void>(CheckNFSShare(&entry));
}

void update_exports(Arguments& arguments) {
  if (arguments.number() == 0) {
    static_cast<void>(UpdateNFSConf(nullptr));
  } else {
    with_access_list<UpdateNFSConf>(arguments);
  }
}

unsigned set_read_only_smb(const ShareInfo* share) {
  return SetSmbShare(share, 1);
}

unsigned set_read_only_afp(const ShareInfo* share) {
  return SetAFPShare(share, 1);
}

constexpr Operation kOperations[] = {
    {"AddGroupToShare", add_group_to_share},
    {"AddGroupToShares", granted<AddGroupToShares>},
    {"AddGroupsToShare", granted<AddGroupsToShare>},
    {"AddShare", with_share<AddShare>},
    {"AddShareWithGroup", with_access_list<AddShareWithGroup>},
    {"AddWinShares", add_removable},
    {"DelAllShare", with_number<DelAllShare>, Leaves::kStreams},
    {"DelAllShareFromSMB", with_nothing<DelAllShareFromSMB>},
    {"DelGroupFromShare", with_two_texts<DelGroupFromShare>},
    {"DelGroupFromShares", with_list<DelGroupFromShares>},
    {"DelGroupsFromShare", with_list<DelGroupsFromShare>},
    {"DelShare", with_text<DelShare>, Leaves::kStreams},
    {"DelShareFromAFP", with_text<DelShareFromAFP>},
    {"DelShareFromSMB", with_text<DelShareFromSMB>},
    {"DelWinShares", delete_removable},
    {"EveryoneInDiskSh", with_number<EveryoneInDiskSh>},
    {"GetAllShare", with_head<GetAllShare, FreeShareList, ShareInfo>},
    {"GetExtShare", with_head<GetExtShare, FreeShareList, ShareInfo>},
    {"GetGroupShareInfo", with_record<GetGroupShareInfo, FreeGrpShareInfo, GroupShareInfo>},
    {"GetNumOfShares", with_nothing<GetNumOfShares>},
    {"GetPublicSh", get_public_share},
    {"GetShareGroup", with_record<GetShareGroup, FreeShareGrpInfo, ShareGroupInfo>},
    {"GetShareInfo", with_share<GetShareInfo>},
    {"GetShareNameList", with_head<GetShareNameList, FreeShareNameList, ShareNameItem>},
    {"GetShareWithGroup", get_share_with_group},
    {"IsNFSEnabled", with_nothing<IsNFSEnabled>},
    {"ReadNFSShare", read_nfs},
    {"ReadNFSShares", with_head<ReadNFSShares, FreeNFSShList, NfsShare>},
    {"SaveNFSConf", save_nfs},
    {"SetAFPShare", with_access_list<set_read_only_afp>},
    {"SetSmbShare", with_access_list<set_read_only_smb>},
    {"ShareExist", with_text<ShareExist>},
    {"UpdateNFSConf", update_exports},
    {"UpdateShare", update_share},
    {"WriteAFPShare", with_access_list<WriteAFPShare>},
    {"WriteSmbShare", with_access_list<WriteSmbShare>},
    {"dir_shared", is_shared},
    {"simple_trans_dir", path_in_place<simple_trans_dir>},
    {"trans_dir", path_in_place<trans_dir>},
    {"trans_dir_with_prefix", behind_prefix},
    {"trans_one_item", in_folder},
};

}  // namespace

const Operation* find_share_operation(std::string_view name) {
  return find_operation(kOperations, name);
}

}  // namespace fuzz
