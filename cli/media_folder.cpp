#include "cli/media_folder.h"

#include <cstring>

#include "cli/failure.h"
#include "cli/names.h"
#include "filesharing/media.h"

namespace fileshare {
namespace {

// The UPnP server's list of folders is divided by commas, and by bars from what they hold.
constexpr TextRule kReference{"a folder", 256, ":,|\"'$\\`", false};

bool leads_up(const std::string& reference) {
  return (reference + '/').find("/../") != std::string::npos;
}

}  // namespace

std::string reference_fault(const std::string& reference) {
  if (reference.empty()) return {};
  if (reference.front() != '/') return "a folder is given as /SHARE or /SHARE/FOLDER";
  if (leads_up(reference)) return "a folder can not contain \"..\"";
  return fault_of(reference, kReference);
}

bool can_publish(const std::string& reference) {
  const int result =
      reference.empty() ? 0 : StripShareAndFolder(reference.c_str(), nullptr, nullptr, 1);
  if (result == 0) return true;
  (void)refuse("can not publish " + in_quotes(reference) +
                   (result == -2 ? ": there is no such folder" : ": there is no such share"),
               kFailed);
  return false;
}

std::string share_of(const std::string& reference) {
  std::string share(reference.size() + 1, '\0');
  std::string folder = share;
  if (StripShareAndFolder(reference.c_str(), share.data(), folder.data(), 0) != 0) return {};
  share.resize(std::strlen(share.c_str()));
  return share;
}

}  // namespace fileshare
