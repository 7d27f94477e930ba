// The rewrite of one file through a temporary copy that the cp command puts in its place.
//
//   FileRewrite rewrite(paths::kGroup, {});
//   STEP(rewrite.open());
//   ... read rewrite.source(), rewrite.write(...) ...
//   return rewrite.commit({.runs = 2, .failure = FSH_MEMBER_NOT_REMOVED});
//
// Without a commit the file stays as it was and the temporary file is removed.
#ifndef FILESHARING_CONF_FILE_REWRITE_H
#define FILESHARING_CONF_FILE_REWRITE_H

#include <functional>
#include <string>
#include <string_view>

#include "conf/file_copy.h"
#include "conf/result.h"
#include "conf/stream.h"
#include "conf/temporary_file.h"

namespace filesharing {

struct RewriteOptions {
  TemporaryPlace place = TemporaryPlace::kConfigurationVolume;
  bool reads_source = true;         // false: written from nothing
  bool opens_source_first = false;  // before the temporary file is made; else after
  bool leaves_unopened = false;     // a file that can not be opened leaves the empty temporary file
  Result no_temporary = FSH_NO_TEMPORARY;
  Result cannot_open = FSH_CANNOT_OPEN;
};

enum class Sync { kNever, kOnSuccess, kAlways };

// How the temporary file gets back over the target. The steps run in the order of the fields.
struct CopyBack {
  bool sync_before = false;
  Through through = Through::kSystem;
  int runs = 1;                  // the status of the last run counts
  bool forgives_echild = false;  // a command whose child could not be collected has not failed
  Sync sync_after = Sync::kNever;
  unsigned settle_seconds = 0;    // after a copy that succeeded
  bool leaves_temporary = false;  // after a copy that succeeded
  Result failure = FSH_FAILED;
};

class FileRewrite {
 public:
  explicit FileRewrite(std::string path, const RewriteOptions& options = {});
  FileRewrite(const FileRewrite&) = delete;
  FileRewrite& operator=(const FileRewrite&) = delete;
  ~FileRewrite() = default;

  // Makes the temporary file and opens both streams.
  Result open();

  std::FILE* source() const { return source_.get(); }
  void write(std::string_view text) { write_text(target_.get(), text); }
  void write_rest_of_source();

  // The stream of the temporary file, for writers that want one.
  std::FILE* target() const { return target_.get(); }

  // Closes both streams and copies back. A temporary file that could not be written in full counts
  // as a failed copy and is not copied.
  Result commit(const CopyBack& copy_back);

 private:
  Result open_in_order();
  Result make_temporary();
  Result open_source();
  Result open_target();
  bool copy(const CopyBack& copy_back) const;

  std::string path_;
  RewriteOptions options_;
  TemporaryFile temporary_;
  Stream source_;
  Stream target_;
};

// What becomes of the content of a file.
using EditText = std::function<std::string(std::string_view text)>;

// Rewrites a file as a whole: FSH_OK, a code of the options, or the failure of copy_back.
Result rewrite_text(const std::string& path, const RewriteOptions& options,
                    const CopyBack& copy_back, const EditText& edit);

// Rewrites a file line by line. edit writes what a line becomes; a result other than FSH_OK ends
// the rewrite with that code and leaves the file as it was.
Result rewrite_lines(
    const std::string& path, const RewriteOptions& options, const CopyBack& copy_back,
    const std::function<Result(std::string_view line, FileRewrite& rewrite)>& edit);

}  // namespace filesharing

#endif
