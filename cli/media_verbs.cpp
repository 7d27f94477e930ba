// fileshare media ...: stopping the media servers while a volume or a share is away.
#include <array>
#include <optional>

#include "cli/failure.h"
#include "cli/names.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "filesharing/media.h"

namespace fileshare {
namespace {

struct Server {
  unsigned bit;
  const char* name;
};
constexpr std::array<Server, 3> kServers{{{1, "itunes"}, {4, "broadcast"}, {8, "upnp"}}};

struct StopArguments {
  std::optional<int> volume;
  std::optional<std::string> prefix;
  bool all = false;
  bool persist = false;
  bool keep_database = false;
  bool json = false;
};

struct StartArguments {
  unsigned mask = 0;
};

int stop_all(bool keep_database) {
  keep_database ? StopAllMedia1() : StopAllMedia();
  return kDone;
}

int stop(const StopArguments& arguments) {
  if (arguments.all) return stop_all(arguments.keep_database);
  if (!arguments.volume) return refuse("either --volume or --all is needed", kUsageError);
  const char* const prefix = arguments.prefix ? arguments.prefix->c_str() : nullptr;
  const unsigned mask = StopMediaProcess(*arguments.volume, prefix, arguments.persist ? 1 : 0);
  Json names = Json::array();
  for (const Server& server : kServers) {
    if ((mask & server.bit) != 0) names.push_back(server.name);
  }
  print_record({{"mask", mask}, {"servers", names}}, arguments.json);
  return kDone;
}

int start(const StartArguments& arguments) {
  return report("start the media servers", StartMediaProcess(arguments.mask),
                {{FSH_FAILED, "the settings file can not be opened"}});
}

std::string mask_fault(const std::string& text) {
  unsigned known = 0;
  for (const Server& server : kServers) known |= server.bit;
  unsigned mask = 0;
  const bool number = CLI::detail::lexical_cast(text, mask);
  if (number && (mask & ~known) == 0) return {};
  return "a mask is the sum of 1 for itunes, 4 for broadcast and 8 for upnp";
}

void add_stop(CLI::App& group) {
  auto& verb = add_verb(group, "stop", "Stop the servers that publish a folder of a volume", stop);
  verb.footer("\"fileshare media start MASK\" starts them again, with the mask that this prints.");
  StopArguments& arguments = verb.arguments;
  auto* volume = verb.add_option("--volume", arguments.volume, "The volume that goes away")
                     ->check(CLI::Range(1, 5));
  verb.add_option("--prefix", arguments.prefix,
                  "Only shares whose names begin with it; not for volume 1 and UPnP")
      ->check(follows(kShareName))
      ->needs(volume);
  verb.add_flag("--persist", arguments.persist, "Switch them off in the settings, too")
      ->needs(volume);
  auto* all = verb.add_flag("--all", arguments.all, "Stop all servers")->excludes(volume);
  verb.add_flag("--keep-database", arguments.keep_database, "Leave what UPnP has found")
      ->needs(all);
  add_json(verb, arguments.json);
}

}  // namespace

void add_media_verbs(CLI::App& app) {
  CLI::App& group = add_group(app, "media", "The media servers around changes of volumes");
  add_stop(group);
  auto& started = add_verb(group, "start", "Start servers that were stopped", start);
  started.add_option("MASK", started.arguments.mask, "What \"stop\" printed")
      ->required()
      ->check(mask_fault);
}

}  // namespace fileshare
