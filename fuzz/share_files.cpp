// The daemons' files of shares. Input: a share's name, its path, its access list, then the file.
#include "conf/text.h"
#include "filesharing/shares.h"
#include "fuzz/fuzz_input.h"
#include "platform/samba/global_section.h"
#include "shares/afp_file.h"
#include "shares/removable_shares.h"
#include "shares/smb_file.h"

namespace {

using namespace filesharing;

void write_entries(const ShareInfo& share, const std::string& text) {
  const std::string name = share.name;
  const std::string body = smb_section_body(share, false);
  const std::string with_section = with_smb_section(text, name, body);
  fuzz::require(with_section.find(body) != std::string::npos);
  const std::string line = afp_line(share, true);
  fuzz::require(with_afp_line(text, name, line).find(line) != std::string::npos);
}

void set_global_keys(const std::string& value, const std::string& text) {
  const samba::GlobalKey keys[] = {{"comment", "", value, ""},
                                   {"vfs object", "vfs objects", std::nullopt, ""}};
  const std::string changed = samba::with_global_keys(text, keys);
  fuzz::require(samba::with_global_keys(changed, keys) == changed);
}

void change_access(const ShareInfo& share, const std::string& text) {
  const RemainingGroups remaining{.groups = share.groups, .removed = "staff"};
  (void)with_smb_access(text, share.name, remaining);
  (void)with_afp_access(text, share.name, remaining);
}

void remove_lines(const std::string& key, const std::string& text) {
  const std::string rest = without_afp_lines(text, key);
  fuzz::require(rest.size() <= text.size());
  fuzz::require(without_afp_lines(rest, key) == rest);
}

void read_mounts(const std::string& name, const std::string& text) {
  const auto mount = removable_mount(text, removable_disk(name, 0));
  if (!mount) return;
  fuzz::require(mount->folder.ends_with(mount->name));
  (void)removable_registry_line(*mount);
  (void)removable_smb_section(*mount);
  (void)removable_afp_line(*mount);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  ShareInfo share = {};
  share.volume = 1;
  copy_field(share.name, input.take_line());
  copy_field(share.path, input.take_line());
  share.groups = GetShGroup(input.take_line().c_str());
  const std::string text = input.rest();
  write_entries(share, text);
  set_global_keys(share.name, text);
  change_access(share, text);
  if (share.path[0] != '\0') remove_lines(share.path, text);
  read_mounts(share.name, text);
  FreeShGrpList(share.groups);
  return 0;
}
