// Deleting and renaming keys, colon-keyed lines and sections.
#include "conf/file_rewrite.h"
#include "conf/line_reader.h"
#include "conf/processes.h"
#include "conf/text.h"
#include "filesharing/conf.h"

namespace filesharing {
namespace {

constexpr std::size_t kPieceLength = 127;

constexpr CopyBack copy_back_twice(Result failure) {
  return {.runs = 2, .forgives_echild = true, .failure = failure};
}

Result delete_lines(const char* key, const char* path, char separator) {
  if (missing(key) || missing(path)) {
    return FSH_ARGUMENT;
  }
  default_child_signal();
  FileRewrite rewrite(path, {.leaves_unopened = true});
  STEP(rewrite.open());
  const std::string prefix = std::string(key) + separator;
  bool dropped = false;
  for (PieceReader piece(rewrite.source(), kPieceLength); piece.next();) {
    if (piece.starts_line() && piece.text().starts_with(prefix)) {
      piece.skip_rest_of_line();
      dropped = true;
    } else {
      rewrite.write(piece.text());
    }
  }
  return dropped ? rewrite.commit(copy_back_twice(FSH_COPY_BACK_FAILED)) : FSH_OK;
}

Result delete_keys(const char* key, const char* path) {
  if (missing(key) || missing(path)) {
    return FSH_ARGUMENT;
  }
  return rewrite_lines(path, {.leaves_unopened = true}, copy_back_twice(FSH_COPY_BACK_FAILED),
                       [&](std::string_view line, FileRewrite& rewrite) {
                         const Halves halves = split_at(line, '=');
                         const bool is_key = halves.found && halves.head == key;
                         // Kept: blank lines go too, whether or not the key is there.
                         if (!is_key && line != "\n") {
                           rewrite.write(line);
                         }
                         return FSH_OK;
                       });
}

// What becomes of a line that begins with the old name, given what follows the name on it.
using Renamed = std::string (*)(const std::string& new_name, std::string_view rest);

Result rename_lines(const std::string& prefix, const char* new_name, const char* path,
                    Renamed renamed) {
  const RewriteOptions options{
      .opens_source_first = true, .leaves_unopened = true, .cannot_open = FSH_FAILED};
  return rewrite_lines(
      path, options, copy_back_twice(FSH_FAILED), [&](std::string_view line, FileRewrite& rewrite) {
        rewrite.write(line.starts_with(prefix) ? renamed(new_name, line.substr(prefix.size()))
                                               : std::string(line));
        return FSH_OK;
      });
}

bool any_missing(const char* old_name, const char* new_name, const char* path) {
  return old_name == nullptr || new_name == nullptr || path == nullptr;
}

}  // namespace
}  // namespace filesharing

using namespace filesharing;

unsigned DelKeyItem(const char* key, const char* path, char separator) {
  return guarded(FSH_COPY_BACK_FAILED, [&] { return delete_lines(key, path, separator); });
}

unsigned DelKeyFromConf(const char* key, const char* path) {
  return guarded(FSH_COPY_BACK_FAILED, [&] { return delete_keys(key, path); });
}

unsigned RenameKey(const char* old_key, const char* new_key, const char* path) {
  if (any_missing(old_key, new_key, path)) {
    return FSH_FAILED;
  }
  return guarded(FSH_FAILED, [&] {
    return rename_lines(std::string(old_key) + '=', new_key, path,
                        [](const std::string& name, std::string_view rest) {
                          return name + '=' + std::string(rest);
                        });
  });
}

unsigned RenameKey1(const char* old_name, const char* new_name, const char* path) {
  if (any_missing(old_name, new_name, path)) {
    return FSH_FAILED;
  }
  return guarded(FSH_FAILED, [&] {
    return rename_lines(std::string(old_name) + ':', new_name, path,
                        [](const std::string& name, std::string_view rest) {
                          return name + ':' + std::string(rest);
                        });
  });
}

unsigned RenameSect(const char* old_section, const char* new_section, const char* path) {
  if (any_missing(old_section, new_section, path)) {
    return FSH_FAILED;
  }
  return guarded(FSH_FAILED, [&] {
    return rename_lines('[' + std::string(old_section) + ']', new_section, path,
                        [](const std::string& name, std::string_view rest) {
                          return '[' + name + ']' + (rest.ends_with('\n') ? "\n" : "");
                        });
  });
}
