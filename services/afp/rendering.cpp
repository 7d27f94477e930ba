#include "services/afp/rendering.h"

#include <string_view>

#include "conf/text.h"

namespace filesharing {

namespace {

// Each token is followed by a blank, the last one too.
void add_token(std::string& line, std::string_view token) {
  line.append(token).append(" ");
}

void add_code_page(std::string& line, std::string_view option, std::string_view code_page) {
  if (!code_page.empty()) {
    add_token(line, option);
    add_token(line, code_page);
  }
}

}  // namespace

std::string afpd_line(const AfpSettings& settings) {
  const bool guests = settings.anonymous != 0;
  const std::string_view name = field_text(settings.name);
  std::string line;
  add_token(line, name.empty() ? "-" : name);
  add_token(line, "-uamlist");
  add_token(line, guests ? "uams_guest.so,uams_dhx.so" : "uams_dhx.so");
  add_code_page(line, "-unixcodepage", field_text(settings.unixcode));
  add_code_page(line, "-maccodepage", field_text(settings.maccode));
  if (guests) {
    add_token(line, "-guestname");
    add_token(line, "\"guest\"");
  }
  return line;
}

std::string mdns_services(const Advertised& advertised) {
  const char* name = advertised.device_name.c_str();
  std::string services =
      format("\"%s\"\t_http._tcp\tlocal.\t%s\n", name, advertised.web_port.c_str());
  if (!advertised.afp) {
    return services;
  }
  if (advertised.time_machine_share) {
    // Kept: a blank, not a tab, stands behind _adisk._tcp; the responder takes it so.
    services += format(
        "\"%s (Time Machine)\"\t_adisk._tcp local.\t9\t\"sys=waMA=%s\"\t"
        "\"dk2=adVF=0x83,adVN=[%s],adVU=080ba3d0-0008-1000-0000-0000f4010001\"\n",
        name, advertised.hardware_address.c_str(), advertised.time_machine_share->c_str());
    services += format("\"%s (Time Machine)\"\t_afpovertcp._tcp\tlocal.\t548\n", name);
  }
  services += format("\"%s (AFP)\"\t_afpovertcp._tcp\tlocal.\t548\n", name);
  return services;
}

}  // namespace filesharing
