// fileshare https ...: the tunnel for the management pages.
#include <array>
#include <cstdio>
#include <memory>
#include <optional>

#include "cli/failure.h"
#include "cli/output.h"
#include "cli/switches.h"
#include "cli/verbs.h"
#include "filesharing/conf.h"
#include "filesharing/services.h"
#include "platform/profile/profile.h"

namespace fileshare {
namespace {

constexpr const char* kSettings = "/etc/CGI_ds.conf";

struct SetArguments {
  std::optional<bool> enabled;
};

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::optional<std::string> setting(std::FILE* stream, const char* key) {
  std::array<char, 16> value{};
  if (FSH_GetStr("network", key, value.data(), value.size() - 1, stream) != FSH_OK) {
    return std::nullopt;
  }
  return value.data();
}

int show(const JsonArguments& arguments) {
  const Stream stream(std::fopen(kSettings, "re"), std::fclose);
  const auto https = stream ? setting(stream.get(), "https") : std::nullopt;
  if (!https) {
    return refuse("can not show the settings of HTTPS: the settings file or its key is missing",
                  kFailed);
  }
  print_record(
      {{"enabled", *https == "yes"}, {"port", setting(stream.get(), "port").value_or("80")}},
      arguments.json);
  return kDone;
}

// The library reads this setting only; as the management pages do, it is set through the profile
// library.
int set(const SetArguments& arguments) {
  const char* const value = *arguments.enabled ? "yes" : "no";
  if (PRO_SetStr("network", "https", value, kSettings) == 0) return kDone;
  return refuse("can not save the settings of HTTPS: the settings file can not be written",
                kFailed);
}

int apply(const NoArguments& /*none*/) {
  if (ResetHttps() == 0) return kDone;
  return refuse("can not apply the settings of HTTPS: the settings file or its key is missing",
                kFailed);
}

}  // namespace

void add_https_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "https", "Encrypted access to the management pages");
  auto& shown = add_verb(group, "show", "Show the settings, and the port that is tunnelled", show);
  add_json(shown, shown.arguments.json);
  auto& changed = add_verb(group, "set", "Change the settings", set);
  changed.footer("The server follows with \"fileshare https apply\".");
  add_switch(changed, "--enabled", changed.arguments.enabled, "Whether the tunnel runs")
      ->required();
  add_verb(group, "apply", "Stop the tunnel and, if it is enabled, start it anew", apply);
}

}  // namespace fileshare
