#include "conf/file_rewrite.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "conf/line_reader.h"

namespace filesharing {

FileRewrite::FileRewrite(std::string path, const RewriteOptions& options)
    : path_(std::move(path)), options_(options) {}

Result FileRewrite::open() {
  const Result opened = open_in_order();
  if (opened != FSH_OK && options_.leaves_unopened) {
    temporary_.leave();
  }
  return opened;
}

Result FileRewrite::open_in_order() {
  if (options_.opens_source_first) {
    STEP(open_source());
    STEP(make_temporary());
  } else {
    STEP(make_temporary());
    STEP(open_source());
  }
  return open_target();
}

Result FileRewrite::make_temporary() {
  return temporary_.make(options_.place) ? FSH_OK : options_.no_temporary;
}

Result FileRewrite::open_source() {
  if (!options_.reads_source) {
    return FSH_OK;
  }
  source_ = open_stream(path_, "r");
  return source_ ? FSH_OK : options_.cannot_open;
}

Result FileRewrite::open_target() {
  target_ = open_stream(temporary_.path(), "w");
  return target_ ? FSH_OK : options_.cannot_open;
}

void FileRewrite::write_rest_of_source() {
  write(read_rest(source()));
}

Result FileRewrite::commit(const CopyBack& copy_back) {
  // A source that could be read only in part would be shortened by the copy.
  const bool read = !source_ || std::ferror(source_.get()) == 0;
  source_.reset();
  bool copied = close_written(std::move(target_)) && read;
  if (copied) {
    if (copy_back.sync_before) {
      sync();
    }
    copied = copy(copy_back);
    if (copy_back.sync_after == Sync::kAlways ||
        (copied && copy_back.sync_after == Sync::kOnSuccess)) {
      sync();
    }
  }
  if (!copied) {
    temporary_.remove();
    return copy_back.failure;
  }
  if (copy_back.settle_seconds > 0) {
    sleep(copy_back.settle_seconds);
  }
  if (copy_back.leaves_temporary) {
    temporary_.leave();
  }
  temporary_.remove();
  return FSH_OK;
}

bool FileRewrite::copy(const CopyBack& copy_back) const {
  const CopyStatus done = copy_file({.from = temporary_.path(),
                                     .to = path_,
                                     .through = copy_back.through,
                                     .runs = copy_back.runs});
  return done.status == 0 || (copy_back.forgives_echild && done.cause == ECHILD);
}

Result rewrite_text(const std::string& path, const RewriteOptions& options,
                    const CopyBack& copy_back, const EditText& edit) {
  FileRewrite rewrite(path, options);
  STEP(rewrite.open());
  rewrite.write(edit(read_rest(rewrite.source())));
  return rewrite.commit(copy_back);
}

Result rewrite_lines(
    const std::string& path, const RewriteOptions& options, const CopyBack& copy_back,
    const std::function<Result(std::string_view line, FileRewrite& rewrite)>& edit) {
  FileRewrite rewrite(path, options);
  STEP(rewrite.open());
  for (LineReader line(rewrite.source()); line.next();) {
    STEP(edit(line.text(), rewrite));
  }
  return rewrite.commit(copy_back);
}

}  // namespace filesharing
