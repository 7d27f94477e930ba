// The tunnel through which browsers reach the management pages over TLS.
#include <unistd.h>

#include <optional>
#include <string>
#include <tuple>

#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/result.h"
#include "conf/settings.h"
#include "filesharing/services.h"
#include "platform/profile/profile.h"

namespace filesharing {
namespace {

struct Tunnel {
  std::string port;
  bool wanted;
};

std::optional<Tunnel> read_tunnel() {
  SettingsFile file;
  if (!file.opened()) {
    return std::nullopt;
  }
  const SettingsSection network = file.section("network");
  const std::string port = network.text("port", 8).value_or("80");
  const auto https = network.text("https", 4);
  if (!https) {
    file.leave_open();  // Kept: such a call costs the process a descriptor.
    return std::nullopt;
  }
  return Tunnel{port, *https == "yes"};
}

// A failure is not reported: the page has its answer already.
void restart_tunnel(const Tunnel& tunnel) {
  std::ignore = run_command("/bin/killall stunnel >/dev/null 2>&1");
  if (tunnel.wanted) {
    std::ignore = PRO_SetStr(nullptr, "connect", tunnel.port.c_str(), paths::kStunnel);
    sleep(4);
    std::ignore = run_command("/usr/sbin/stunnel /etc/stunnel.conf >/dev/null 2>&1");
  }
}

int apply_https() {
  const auto tunnel = read_tunnel();
  if (!tunnel) {
    return -1;
  }
  const Detached options{.sleep_seconds = 10, .caller_resets_child_signal = true};
  return static_cast<int>(run_detached(options, [&] { restart_tunnel(*tunnel); }));
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

int ResetHttps(void) {
  return guarded(-1, apply_https);
}
