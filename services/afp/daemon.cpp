// The AFP daemon: its configuration file and its restart.
#include <tuple>

#include "conf/detached.h"
#include "conf/file_rewrite.h"
#include "conf/paths.h"
#include "conf/result.h"
#include "conf/shell.h"
#include "filesharing/services.h"
#include "services/afp/rendering.h"

namespace filesharing {
namespace {

Result write_configuration(const AfpSettings& settings) {
  FileRewrite rewrite(paths::kAfpd, {.place = TemporaryPlace::kTmp, .reads_source = false});
  STEP(rewrite.open());
  rewrite.write(afpd_line(settings));
  return rewrite.commit({.runs = 2, .settle_seconds = 2, .failure = FSH_AFP_NOT_SAVED});
}

Result restart(const AfpSettings& settings) {
  std::ignore = run_command("/bin/killall afpd >/dev/null 2>&1");  // it may not be running
  if (settings.enabled != 0) {
    STEP(SetAFPDConf(settings));
    std::ignore = run_command("/usr/sbin/afpd >/dev/null 2>&1");
  }
  std::ignore = ResetmDNSConf();  // nobody is left to be told
  return FSH_OK;
}

Result reset() {
  AfpSettings settings{};
  if (ReadAFPConf(&settings) != FSH_OK) {
    return FSH_AFP_NOT_RESET;
  }
  const Detached options{.sleep_seconds = 5, .caller_resets_child_signal = true};
  // Kept: a background process that fails goes on as a second caller, with the code.
  return run_detached_until_failure(options, [&] { return restart(settings); });
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned SetAFPDConf(AfpSettings settings) {
  return guarded(FSH_AFP_NOT_SAVED, [&] { return write_configuration(settings); });
}

unsigned ResetAFP(void) {
  return guarded(FSH_AFP_NOT_RESET, reset);
}
