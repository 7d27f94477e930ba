// fileshare backup and restore: the copies that every change of the account files is undone from.
#include "cli/backup_verbs.h"

#include "cli/failure.h"
#include "cli/guarded_files.h"
#include "cli/verbs.h"
#include "filesharing/conf.h"

namespace fileshare {
namespace {

constexpr const char* kFilesHelp = "Which files; all when none is named";

struct CopyArguments {
  std::vector<std::string> names;
};

// One of BackupConFiles and RestoreConFiles, and its name for error lines.
struct Copy {
  const char* verb;
  int (*run)(int mask);
};

std::vector<const GuardedFile*> chosen_files(const CopyArguments& arguments) {
  std::vector<const GuardedFile*> files;
  for (const GuardedFile& file : guarded_files()) {
    if (file.bit != 0 && is_chosen(file, arguments.names)) files.push_back(&file);
  }
  return files;
}

// Taken one by one, so that a refusal leaves nobody's lock behind but the others' own.
class Locks {
 public:
  Locks() = default;
  ~Locks() { Unlock(held_); }
  Locks(const Locks&) = delete;
  Locks& operator=(const Locks&) = delete;

  unsigned take(const GuardedFile& file) {
    const unsigned busy = Lock(file.bit);
    if (busy == 0) held_ |= file.bit;
    return busy;
  }

 private:
  int held_ = 0;
};

std::string operation_on(const Copy& copy, const GuardedFile& file) {
  return std::string(copy.verb) + " file " + in_quotes(file.name);
}

// One file at a time: the library tells the status of the last command alone.
int copy_file(const Copy& copy, const GuardedFile& file) {
  const auto code = static_cast<unsigned>(copy.run(file.bit));
  if (code != FSH_FAILED && code != FSH_OK) {
    return refuse("can not " + operation_on(copy, file) + ": the copy command failed (code " +
                      std::to_string(code) + ")",
                  kFailed);
  }
  return report(operation_on(copy, file), code,
                {{FSH_FAILED, "no volume carries the account files"}});
}

int copy_files(const Copy& copy, const CopyArguments& arguments) {
  const std::vector<const GuardedFile*> files = chosen_files(arguments);
  Locks locks;
  for (const GuardedFile* file : files) {
    const unsigned busy = locks.take(*file);
    const auto bit = static_cast<unsigned>(file->bit);
    if (busy != 0) return report(operation_on(copy, *file), busy, {{bit, "its lock is taken"}});
  }
  int status = kDone;
  for (const GuardedFile* file : files) {
    if (copy_file(copy, *file) != kDone) status = kFailed;
  }
  return status;
}

int back_up(const CopyArguments& arguments) {
  return copy_files({"back up", BackupConFiles}, arguments);
}

int restore(const CopyArguments& arguments) {
  return copy_files({"restore", RestoreConFiles}, arguments);
}

}  // namespace

int restore_file(const GuardedFile& file) {
  return copy_file({"restore", RestoreConFiles}, file);
}

void add_backup_verbs(CLI::App& app) {
  auto& backup = add_verb(app, "backup", "Copy the account files", back_up);
  backup.footer(
      "Copies the files in the conf folder of the configuration volume to copies beside\n"
      "them (*.ttt), as every change does before it begins.");
  add_guarded_names(backup, backup.arguments.names, kFilesHelp, true);
  auto& back = add_verb(app, "restore", "Put the copies of the account files back", restore);
  back.footer(
      "Puts the copies (*.ttt) that the last backup or change made back over the files.\n"
      "What has been changed since then is lost.");
  add_guarded_names(back, back.arguments.names, kFilesHelp, true);
}

}  // namespace fileshare
