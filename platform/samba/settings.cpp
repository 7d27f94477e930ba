#include <iconv.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "platform/profile/whole_file.h"
#include "platform/samba/global_section.h"
#include "platform/samba/samba.h"
#include "platform/utility/utility.h"

namespace {

constexpr char kConfiguration[] = "/etc/samba/smb.conf";
constexpr int kFailed = -1;
constexpr int kSecondsToEnd = 10;
constexpr std::string_view kDefaultCharset = "CP850";  // Samba's own default

// system(3) tells a command's status only while SIGCHLD has its default action; the caller's action
// comes back afterwards.
class DefaultChildSignal {
 public:
  DefaultChildSignal() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    (void)sigaction(SIGCHLD, &action, &before_);  // can not fail for a signal that exists
  }
  ~DefaultChildSignal() { (void)sigaction(SIGCHLD, &before_, nullptr); }
  DefaultChildSignal(const DefaultChildSignal&) = delete;
  DefaultChildSignal& operator=(const DefaultChildSignal&) = delete;

 private:
  struct sigaction before_ {};
};

// A field's text: it has no terminator when it fills the field.
template <size_t Size>
std::string text_of(const char (&field)[Size]) {
  return {field, strnlen(field, Size)};
}

// The iconv(3) name of a code page, as Samba asks for it. With one that is unknown here (65001, for
// one: clients that need this setting know no Unicode) Samba would take its default: write that.
std::string charset_of(const std::string& code_page) {
  std::string name = "CP" + code_page;
  const bool is_number = code_page.find_first_not_of("0123456789") == code_page.npos;
  if (!is_number || code_page.empty()) return std::string(kDefaultCharset);
  iconv_t conversion = iconv_open("UTF-16LE", name.c_str());
  if (reinterpret_cast<intptr_t>(conversion) == -1) return std::string(kDefaultCharset);
  (void)iconv_close(conversion);
  return name;
}

// "vfs object", "username map" and "load printers" are set by callers, by PRO_SetStr.
bool write_settings(const SambaServerParams& params) {
  const samba::GlobalKey keys[] = {
      {"server string", "", text_of(params.server_comment), ""},
      {"workgroup", "", text_of(params.workgroup), ""},
      {"dos charset", "", charset_of(text_of(params.code_page)), ""},
      {"printer name", "printer", text_of(params.printer_name), ""},
      {"comment", "", text_of(params.printer_comment), ""},
      {"wins server", "", text_of(params.wins_server), ""},
      {"vfs object", "vfs objects", std::nullopt, ""},
      {"username map", "", std::nullopt, ""},
      {"load printers", "", std::nullopt, "yes"},
  };
  for (const auto& key : keys) {
    if (key.value && key.value->find('\n') != std::string::npos) return false;
  }
  std::optional<std::string> text = profile::read_whole_file(kConfiguration);
  if (!text && errno == ENOENT) text.emplace();
  return text && profile::replace_whole_file(kConfiguration, samba::with_global_keys(*text, keys));
}

// A daemon that is told to end still holds its sockets and pid file for a moment, and a new one
// would give up at once.
void stop(const char* daemon) {
  if (SYSTEM("/bin/killall %s >/dev/null 2>&1", daemon) != 0) return;
  for (int seconds = 0; seconds < kSecondsToEnd; ++seconds) {
    if (SYSTEM("/bin/killall -0 %s >/dev/null 2>&1", daemon) != 0) return;
    (void)sleep(1);
  }
  (void)SYSTEM("/bin/killall -9 %s >/dev/null 2>&1", daemon);  // it may have ended just now
}

// The daemon must not keep the page's streams open.
bool start(const char* daemon) {
  return SYSTEM("/usr/sbin/%s -D </dev/null >/dev/null 2>&1", daemon) == 0;
}

int apply(const SambaServerParams& params) {
  const std::string state = text_of(params.state);
  if (state != "enable" && state != "disable") return kFailed;
  if (state == "enable" && !write_settings(params)) return kFailed;
  const DefaultChildSignal default_child_signal;
  stop("smbd");
  stop("nmbd");
  if (state == "disable") return 0;
  const bool smbd_started = start("smbd");
  return start("nmbd") && smbd_started ? 0 : kFailed;
}

}  // namespace

int SMBSetSamba(const SambaServerParams* params) {
  if (params == nullptr) return kFailed;
  try {
    return apply(*params);
  } catch (const std::bad_alloc&) {
    return kFailed;
  }
}
