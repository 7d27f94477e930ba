// /etc/album_user.conf, its text and its lock: a section for each user, with an information line
// and a line for each folder that the user may see.
//
//   [anna]
//   information=text 1:text 2:number 1:number 2
//   album=right number:folder
#ifndef FILESHARING_ALBUM_ALBUM_FILE_H
#define FILESHARING_ALBUM_ALBUM_FILE_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

// ---- The text

// A longer line is looked at in pieces of this length, each as if it were a line.
constexpr std::size_t kLongestAlbumLine = 1023;

// Whether a section begins, and another ends, at a line.
inline bool is_header(std::string_view line) {
  return line.starts_with('[');
}

// Who a user is, for the functions here and for those of the profile library, which change the
// file too: a header has a "]", blanks round the name do not count, and names compare as Samba's.

// Whether a user of this name is found again: it is not empty and does not end the header.
bool can_be_user(std::string_view name);

// The user of a section header; nothing for any other line.
std::optional<std::string_view> header_user(std::string_view line);

// Whether a line is the section header of the user.
bool is_header_of(std::string_view line, std::string_view user);

// Fills the texts and numbers of a record from the value of an information line, texts cut to their
// fields. False, with the record as it was, when one of the first three colons is missing.
bool parse_information(std::string_view value, AlbumUserInfo& record);

// The value of the record's information line.
std::string information_value(const AlbumUserInfo& record);

// A folder's line: the text before and behind the first ":" that follows "=".
struct FolderLine {
  bool has_value;   // a "="
  bool has_folder;  // and a ":" behind it
  std::string_view right;
  std::string_view folder;
};
FolderLine parse_folder_line(std::string_view line);

// The file with the folder among the user's, at the end of the section, with this right. A folder
// that is there keeps its right. Empty lines go, and lines of the section without "=".
std::string with_folder(std::string_view text, std::string_view user, std::string_view folder,
                        int right);

// The file with the folder no more among the user's. Empty lines go, and lines of the section
// without "=" or ":".
std::string without_folder(std::string_view text, std::string_view user, std::string_view folder);

// ---- The lock

// Holds the lock while it is in scope; changes wait for it.
class AlbumLock {
 public:
  // Tries to take the lock 15 times, 2 seconds apart, and then goes on without it: a page that died
  // with the lock must not shut everybody out.
  AlbumLock();
  AlbumLock(const AlbumLock&) = delete;
  AlbumLock& operator=(const AlbumLock&) = delete;

  // Removes the lock file, whoever made it.
  ~AlbumLock();

  // What a change returns whose rewrite of the file had this result: 0, or -1.
  int end_rewrite(Result result);

 private:
  bool stays_ = false;
};

}  // namespace filesharing

#endif
