// Makes the FTP service follow its settings.
#include <tuple>

#include "conf/inetd.h"
#include "conf/line_rules.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/shell.h"
#include "filesharing/services.h"
#include "services/ftp_rules.h"

namespace filesharing {
namespace {

// Kept: a longer line of /etc/services is looked at in pieces; a mark across two is not seen.
constexpr std::size_t kServicesPiece = 127;

constexpr RewriteOptions kFirstFile{.place = TemporaryPlace::kTmp};
constexpr RewriteOptions kLaterFile{.place = TemporaryPlace::kTmp, .no_temporary = FSH_CANNOT_OPEN};
constexpr CopyBack kCopyOnce{.forgives_echild = true, .failure = FSH_SERVICE_NOT_APPLIED};
constexpr CopyBack kCopyTwice{.runs = 2, .failure = FSH_SERVICE_NOT_APPLIED};

Result read_guest_access(bool& lets_guests_in) {
  const SettingsFile file;
  if (!file.opened()) {
    return FSH_CANNOT_OPEN;
  }
  const auto value = file.section("network").text("guest_access", 4);
  lets_guests_in = value == "yes";
  return value ? FSH_OK : FSH_GUEST_ACCESS_MISSING;
}

Result restart() {
  stop_inetd();
  std::ignore = run_command("/bin/killall bftpd 2>/dev/null");  // it need not run
  return start_inetd_detached();
}

Result reset() {
  FtpSettings settings{};
  if (ReadFTPConf(&settings) != 0) {
    return FSH_SERVICE_NOT_APPLIED;
  }
  bool guests = false;
  STEP(rewrite_by_rules(paths::kServices, kFirstFile, kCopyOnce, ftp_rules_of_services(settings),
                        kServicesPiece));
  STEP(read_guest_access(guests));
  STEP(rewrite_by_rules(paths::kVsftpd, kLaterFile, kCopyOnce,
                        ftp_rules_of_vsftpd(settings, guests)));
  STEP(rewrite_by_rules(paths::kInetd, kLaterFile, kCopyTwice, ftp_rules_of_inetd(settings)));
  return restart();
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned ResetFTP(void) {
  return guarded(FSH_SERVICE_NOT_APPLIED, reset);
}
