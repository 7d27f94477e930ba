// The files of the AFP daemon and of the mDNS responder, as text.
#ifndef FILESHARING_SERVICES_AFP_RENDERING_H
#define FILESHARING_SERVICES_AFP_RENDERING_H

#include <optional>
#include <string>

#include "filesharing/types.h"

namespace filesharing {

// The one line of afpd.conf, without a line end.
std::string afpd_line(const AfpSettings& settings);

// What the server tells its network about itself.
struct Advertised {
  std::string device_name;
  std::string hardware_address;
  std::string web_port;
  bool afp = false;
  std::optional<std::string> time_machine_share = {};  // told only with afp
};

std::string mdns_services(const Advertised& advertised);

}  // namespace filesharing

#endif
