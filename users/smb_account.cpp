#include "users/smb_account.h"

#include <unistd.h>

#include <tuple>

#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/processes.h"
#include "conf/stream.h"
#include "conf/text.h"
#include "platform/utility/utility.h"

namespace filesharing {
namespace {

constexpr std::size_t kPieceLength = 255;

// Copies the accounts, the first one of the old name under the new one. False without such a one.
bool copy_renamed(FileRewrite& rewrite, const std::string& old_name, const std::string& new_name) {
  bool renamed = false;
  for (PieceReader piece(rewrite.source(), kPieceLength); piece.next();) {
    // Kept: blank lines go, and so does the line feed of a line of exactly 255 characters.
    if (is_blank_line(piece.text())) {
      continue;
    }
    const Halves name = split_at(piece.text(), ':');
    if (!renamed && piece.starts_line() && name.found && name.head == old_name) {
      rewrite.write(new_name + ':');
      rewrite.write(name.tail);
      renamed = true;
    } else {
      rewrite.write(piece.text());
    }
  }
  return renamed;
}

// The copy brought the content alone; the tool refuses a file that others can read.
void protect_smb_accounts() {
  std::ignore = SYSTEM("/bin/chown root:%s %s 2>/dev/null", "administrators", paths::kSmbPasswd);
  std::ignore = SYSTEM("/bin/chmod 600 %s 2>/dev/null", paths::kSmbPasswd);
  sync();
}

}  // namespace

Result add_smb_account(const std::string& name, const std::string& password) {
  if (password.empty()) {
    return static_cast<Result>(run_command(R"(/usr/sbin/smbpasswd -a -n "%s" >/dev/null 2>&1)",
                                           shell_escaped(name).c_str()));
  }
  // Kept: the name is not escaped here, so the shell expands a "$" or a back quote in it.
  return static_cast<Result>(run_command(R"(/usr/sbin/smbpasswd -a "%s" "%s" >/dev/null 2>&1)",
                                         name.c_str(), shell_escaped(password).c_str()));
}

Result set_smb_password(const std::string& name, const std::string& password) {
  const std::string escaped = shell_escaped(name);
  return static_cast<Result>(
      password.empty()
          ? run_command(R"(/usr/sbin/smbpasswd -n "%s" >/dev/null 2>&1)", escaped.c_str())
          : run_command(R"(/usr/sbin/smbpasswd "%s" "%s" >/dev/null 2>&1)", escaped.c_str(),
                        shell_escaped(password).c_str()));
}

void flush_smb_accounts() {
  if (Stream stream = open_stream(paths::kSmbPasswd, "a")) {
    std::ignore = close_flushed(std::move(stream));  // the tool has checked its own writing
  }
}

void end_smb_connections(std::int32_t uid) {
  std::ignore = run_command(R"(/usr/sbin/smbstatus "%d" >/dev/null 2>&1)", uid);
}

Result rename_smb_account(const std::string& old_name, const std::string& new_name) {
  FileRewrite rewrite(paths::kSmbPasswd);
  STEP(rewrite.open());
  if (!copy_renamed(rewrite, old_name, new_name)) {
    return FSH_USER_NOT_UPDATED;
  }
  const CopyBack copy_back{.through = Through::kUtilityLibrary, .failure = FSH_USER_NOT_UPDATED};
  STEP(rewrite.commit(copy_back));
  protect_smb_accounts();
  return FSH_OK;
}

}  // namespace filesharing
