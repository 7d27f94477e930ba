// What the mDNS responder tells the network about this server.
#include <unistd.h>

#include <optional>
#include <tuple>
#include <utility>

#include "conf/file_copy.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "filesharing/services.h"
#include "filesharing/shares.h"

namespace filesharing {
namespace {

constexpr unsigned kSecondsToEnd = 3;
constexpr unsigned kSecondsToSettle = 5;

// The responder may not be running, and a second signal catches one that was just starting: no
// status counts.
void stop_responder() {
  std::ignore = run_command("/bin/killall -SIGINT mDNSResponder >/dev/null 2>&1");
  sleep(kSecondsToEnd);
  std::ignore = run_command("/bin/killall -SIGINT mDNSResponder >/dev/null 2>&1");
}

struct Advertised {
  std::string device_name;
  std::string hardware_address;
  std::string web_port;
  bool afp = false;
  std::string time_machine_share = {};  // counts only with afp; may be empty
};

std::string lines_of(const Advertised& advertised) {
  const char* name = advertised.device_name.c_str();
  std::string lines = format("\"%s\"\t_http._tcp\tlocal.\t%s\n", name, advertised.web_port.c_str());
  if (!advertised.afp) {
    return lines;
  }
  if (!advertised.time_machine_share.empty()) {
    // Kept: a blank, not a tab, stands behind _adisk._tcp; the responder takes it so.
    lines += format(
        "\"%s (Time Machine)\"\t_adisk._tcp local.\t9\t\"sys=waMA=%s\"\t"
        "\"dk2=adVF=0x83,adVN=[%s],adVU=080ba3d0-0008-1000-0000-0000f4010001\"\n",
        name, advertised.hardware_address.c_str(), advertised.time_machine_share.c_str());
    lines += format("\"%s (Time Machine)\"\t_afpovertcp._tcp\tlocal.\t548\n", name);
  }
  lines += format("\"%s (AFP)\"\t_afpovertcp._tcp\tlocal.\t548\n", name);
  return lines;
}

// What does not depend on AFP; nothing without a name or a web port.
std::optional<Advertised> read_device() {
  const SettingsFile file;
  if (!file.opened()) {
    return std::nullopt;
  }
  const SettingsSection network = file.section("network");
  const std::string name = network.text("disk_server_name", 20).value_or("");
  const std::string address = network.text("hw_addr", 24).value_or("");
  const auto port = network.text("port", 11);
  if (!port || name.empty()) {
    return std::nullopt;
  }
  return Advertised{.device_name = name, .hardware_address = address, .web_port = *port};
}

void add_afp(Advertised& advertised) {
  AfpSettings settings{};
  if (ReadAFPConf(&settings) != FSH_OK || settings.enabled == 0) {
    return;
  }
  advertised.afp = true;
  if (*settings.tm_share != '\0' && ShareExist(settings.tm_share) != 0) {
    advertised.time_machine_share = settings.tm_share;
  }
}

bool write_configuration(Advertised& advertised) {
  const OldContent old(paths::kMdnsResponder);
  // A failure shows again when the file is opened.
  std::ignore = truncate(paths::kMdnsResponder, 0);
  Stream responder = open_stream(paths::kMdnsResponder, "w");
  if (!responder) {
    return false;
  }
  add_afp(advertised);
  write_text(responder.get(), lines_of(advertised));
  const bool written = close_written(std::move(responder));
  if (!written) {
    old.put_back();
  }
  return written;
}

int restart_responder() {
  stop_responder();
  auto advertised = read_device();
  if (!advertised || !write_configuration(*advertised)) {
    return -1;
  }
  sleep(kSecondsToSettle);
  std::ignore =
      run_command("/sbin/mDNSResponder >/dev/null 2>&1");  // it says itself what it cannot do
  return 0;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ResetmDNSConf(void) {
  return guarded(-1, restart_responder);
}
