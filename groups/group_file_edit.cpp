#include "groups/group_file_edit.h"

#include <cstdio>
#include <string>

#include "conf/paths.h"

namespace filesharing {
namespace {

constexpr std::size_t kFieldLimit = 40;  // the colon behind a field included
constexpr std::size_t kMemberLimit = 40;
constexpr int kFieldsBehindName = 2;  // password and gid

enum class Stop { kNone, kColon, kComma, kLineEnd, kEndOfFile, kLimit };

// The member field of one line, from what is read to what is written.
class MemberField {
 public:
  MemberField(const GroupFileEdit& edit, FileRewrite& rewrite)
      : edit_(edit),
        rewrite_(rewrite),
        counts_(edit.counts != nullptr ? *edit.counts : own_counts_),
        is_member_(edit.users.size(), false) {}

  Result rebuild() {
    do {
      stop_ = read_member();
      if (member_.size() > kMemberLimit) {
        return FSH_MALFORMED;
      }
      if (!member_.empty()) {
        pass_on_member();
      }
      if (edit_.keeps_every_comma && stop_ == Stop::kComma) {
        rewrite_.write(",");
      }
    } while (stop_ == Stop::kComma);
    if (edit_.action == MemberAction::kAdd) {
      append_users();
    }
    return FSH_OK;
  }

  bool ended_file() const { return stop_ == Stop::kEndOfFile; }

 private:
  Stop read_member() {
    member_.clear();
    for (;;) {
      const int character = std::getc(rewrite_.source());
      if (character != ' ' || !member_.empty()) {
        const Stop stop = stop_at(character);
        if (stop != Stop::kNone) {
          member_.erase(member_.find_last_not_of(' ') + 1);
          return stop;
        }
        member_.push_back(static_cast<char>(character));
      }
    }
  }

  // Where a character ends a member; a carriage return takes its line feed with it.
  Stop stop_at(int character) {
    switch (character) {
      case EOF:
        return Stop::kEndOfFile;
      case ',':
        return Stop::kComma;
      case '\n':
        return Stop::kLineEnd;
      case '\r':
        if (const int next = std::getc(rewrite_.source()); next != '\n') {
          std::ungetc(next, rewrite_.source());
        }
        return Stop::kLineEnd;
      default:
        return Stop::kNone;
    }
  }

  void pass_on_member() {
    if (edit_.action == MemberAction::kRemove && holds(edit_.users, member_)) {
      return;
    }
    mark_member();
    if (!edit_.keeps_every_comma) {
      write_separator();
    }
    rewrite_.write(member_);
    ++counts_.written;
  }

  void mark_member() {
    for (std::size_t i = 0; i < edit_.users.size() && !all_found(); ++i) {
      if (!is_member_[i] && edit_.users[i] == member_) {
        is_member_[i] = true;
        ++counts_.found;
      }
    }
  }

  void append_users() {
    for (std::size_t i = 0; i < edit_.users.size() && !all_found(); ++i) {
      if (!is_member_[i]) {
        write_separator();
        rewrite_.write(edit_.users[i]);
        ++counts_.written;
        ++counts_.found;
      }
    }
  }

  void write_separator() {
    if (counts_.written > 0) {
      rewrite_.write(",");
    }
  }

  bool all_found() const { return counts_.found >= static_cast<int>(edit_.users.size()); }

  const GroupFileEdit& edit_;
  FileRewrite& rewrite_;
  MemberCounts own_counts_;
  MemberCounts& counts_;
  std::vector<bool> is_member_;  // of the users
  std::string member_;
  Stop stop_ = Stop::kNone;
};

class GroupFileEditor {
 public:
  GroupFileEditor(const GroupFileEdit& edit, FileRewrite& rewrite)
      : edit_(edit), rewrite_(rewrite) {}

  Result run() {
    while (!at_end_) {
      STEP(edit_line());
    }
    return FSH_OK;
  }

 private:
  Result edit_line() {
    head_.clear();
    Stop stop = read_field();
    if (stop == Stop::kColon && is_listed()) {
      for (int field = 0; field < kFieldsBehindName && stop == Stop::kColon; ++field) {
        stop = read_field();
      }
      if (stop == Stop::kColon) {
        return edit_members();
      }
      if (edit_.refuses_short_lines) {
        return FSH_MALFORMED;
      }
    }
    rewrite_.write(head_);
    if (stop == Stop::kColon || stop == Stop::kLimit) {
      copy_rest_of_line();
    }
    return FSH_OK;
  }

  // A line whose name is empty is no group's, though a caller may list such a name.
  bool is_listed() const {
    return head_.size() > 1 &&
           holds(edit_.groups, std::string_view(head_).substr(0, head_.size() - 1));
  }

  Result edit_members() {
    rewrite_.write(head_);
    MemberField members(edit_, rewrite_);
    STEP(members.rebuild());
    at_end_ = members.ended_file();
    if (!at_end_ || edit_.ends_last_line) {
      rewrite_.write("\n");
    }
    if (edit_.first_line_only) {
      rewrite_.write_rest_of_source();
      at_end_ = true;
    }
    return FSH_OK;
  }

  // Adds the next field of the line to its head.
  Stop read_field() {
    for (std::size_t length = 0; length < kFieldLimit; ++length) {
      const int character = std::getc(rewrite_.source());
      if (character == EOF) {
        at_end_ = true;
        return Stop::kEndOfFile;
      }
      head_.push_back(static_cast<char>(character));
      if (character == ':') {
        return Stop::kColon;
      }
      if (character == '\n' || character == '\r') {
        return Stop::kLineEnd;
      }
    }
    return Stop::kLimit;
  }

  void copy_rest_of_line() {
    std::string rest;
    do {
      const int character = std::getc(rewrite_.source());
      at_end_ = character == EOF;
      if (!at_end_) {
        rest.push_back(static_cast<char>(character));
      }
    } while (!at_end_ && edit_.line_ends.find(rest.back()) == std::string_view::npos);
    rewrite_.write(rest);
  }

  const GroupFileEdit& edit_;
  FileRewrite& rewrite_;
  std::string head_;  // of the line: what has been read of the fields before its members
  bool at_end_ = false;
};

}  // namespace

Result edit_group_file(const GroupFileEdit& edit) {
  FileRewrite rewrite(paths::kGroup);
  STEP(rewrite.open());
  STEP(GroupFileEditor(edit, rewrite).run());
  return rewrite.commit(edit.copy_back);
}

}  // namespace filesharing
