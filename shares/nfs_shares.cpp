// The entries of /etc/nfs.info: what single hosts may do, for the pages that show it.
#include <arpa/inet.h>

#include <array>
#include <optional>

#include "conf/c_list.h"
#include "conf/line_reader.h"
#include "conf/names.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/services.h"
#include "filesharing/shares.h"

namespace filesharing {
namespace {

constexpr int kValueLimit = 128;
constexpr int kMostMaskBits = 32;

// "host:mask:flags"; false when a colon is missing. A host that does not fit is cut.
bool parse_entry(std::string_view value, NfsShare& entry) {
  const Halves host = split_at(value, ':');
  const Halves mask = split_at(host.tail, ':');
  if (!host.found || !mask.found) {
    return false;
  }
  copy_field(entry.host, host.head);
  entry.mask = to_int(mask.head);
  entry.flags = to_int(mask.tail);
  return true;
}

bool go_to_entries(LineReader& line) {
  while (line.next()) {
    if (line.text().starts_with("[NFS]")) {
      return true;
    }
  }
  return false;
}

Result read_entries(NfsShare** head) {
  const Stream stream = open_stream(paths::kNfsShares, "r");
  if (!stream) {
    return FSH_CANNOT_OPEN;
  }
  CList<NfsShare> entries(FreeNFSShList);
  LineReader line(stream.get());
  for (bool more = go_to_entries(line) && line.next(); more && !line.text().starts_with('[');
       more = line.next()) {
    const Halves fields = split_at(without_line_end(line.text()), '=');
    if (fields.found && fields.head.size() > kMostNameCharacters) {
      continue;
    }
    NfsShare& entry = entries.append();
    if (!fields.found || !parse_entry(fields.tail, entry)) {
      return FSH_FAILED;  // Kept: a blank line among the entries does it, too.
    }
    copy_field(entry.name, fields.head);
  }
  *head = entries.release();
  return FSH_OK;
}

Result read_entry(NfsShare& entry) {
  const SettingsFile file(paths::kNfsShares);
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  const std::string name(field_text(entry.name));
  const auto value = file.section("NFS").text(name.c_str(), kValueLimit);
  if (!value) {
    return FSH_FAILED;
  }
  if (!parse_entry(*value, entry)) {
    return FSH_MALFORMED;
  }
  entry.next = nullptr;
  return FSH_OK;
}

bool means_every_host(std::string_view host) {
  return host.empty() || host == "..." || host == "0.0.0.0";
}

int check_entry(NfsShare& entry) {
  const std::string given(field_text(entry.host));
  std::array<char, sizeof entry.host + 1> host{};  // a caller may have filled the field's last byte
  omitIpSpace(host.data(), given.c_str(), static_cast<int>(given.size()));
  copy_field(entry.host, means_every_host(host.data()) ? "" : host.data());
  in_addr address{};
  if (*entry.host != '\0' && inet_aton(entry.host, &address) == 0) {
    return -2;
  }
  return entry.mask < 0 || entry.mask > kMostMaskBits ? -3 : 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ReadNFSShares(NfsShare** head) {
  if (head == nullptr) {
    return FSH_ARGUMENT;
  }
  *head = nullptr;
  return guarded(FSH_FAILED, [&] { return read_entries(head); });
}

unsigned ReadNFSShare(NfsShare* entry) {
  if (entry == nullptr) {
    return FSH_ARGUMENT;
  }
  return guarded(FSH_FAILED, [&] { return read_entry(*entry); });
}

int CheckNFSShare(NfsShare* entry) {
  return entry == nullptr ? -1 : guarded(-1, [&] { return check_entry(*entry); });
}

void FreeNFSShList(NfsShare* head) {
  free_list(head);
}

// Pages of another model of the server call these; here entries are read only.
int AddNFSShare(const void* entry) {
  return entry == nullptr ? -1 : 0;
}
int DelNFSShare(const void* entry) {
  return entry == nullptr ? -1 : 0;
}
int UpdateNFSShare(void) {
  return 0;
}
unsigned ResetNFSShares(unsigned value) {
  return value;
}
