#include "album/album_file.h"

#include <unistd.h>

#include "conf/guarded_files.h"
#include "conf/line_reader.h"
#include "conf/paths.h"
#include "conf/text.h"
#include "platform/samba/samba.h"

namespace filesharing {

namespace {

constexpr std::string_view kInformation = "information";

constexpr int kAttempts = 15;
constexpr unsigned kSecondsBetween = 2;

std::string_view without_blanks(std::string_view name) {
  constexpr std::string_view kBlanks = " \t";
  name.remove_prefix(std::min(name.find_first_not_of(kBlanks), name.size()));
  return name.substr(0, name.find_last_not_of(kBlanks) + 1);
}

// Rewrites the sections of a user. The line to add goes to the end of those that have no line of
// the folder; when there is none to add, the folder's lines go.
std::string edit_sections(std::string_view text, std::string_view user, std::string_view folder,
                          const std::string& added) {
  std::string result;
  bool inside = false;
  bool present = false;
  const auto end_section = [&] { result += inside && !present ? added : ""; };
  for (PieceReader piece(text, kLongestAlbumLine); piece.next();) {
    const std::string_view line = piece.text().substr(0, piece.text().find('\n'));
    if (line.empty()) {
      continue;
    }
    if (is_header(line)) {
      end_section();
      inside = is_header_of(line, user);
      present = false;
    } else if (inside && !line.starts_with(kInformation)) {
      const FolderLine entry = parse_folder_line(line);
      const bool is_folder = entry.has_folder && entry.folder == folder;
      const bool stays = added.empty() ? entry.has_folder && !is_folder : entry.has_value;
      present = present || is_folder;
      if (!stays) {
        continue;
      }
    }
    result.append(line).append("\n");
  }
  end_section();
  return result;
}

}  // namespace

bool can_be_user(std::string_view name) {
  constexpr std::string_view kRefused("]\n\0", 3);
  return !without_blanks(name).empty() && name.find_first_of(kRefused) == std::string_view::npos;
}

std::optional<std::string_view> header_user(std::string_view line) {
  const auto header = split_at(line, ']');
  if (!header.found || !is_header(line) || !can_be_user(header.head.substr(1))) {
    return std::nullopt;
  }
  return without_blanks(header.head.substr(1));
}

bool is_header_of(std::string_view line, std::string_view user) {
  const auto name = header_user(line);
  return name &&
         strequal(std::string(*name).c_str(), std::string(without_blanks(user)).c_str()) != 0;
}

bool parse_information(std::string_view value, AlbumUserInfo& record) {
  const auto text1 = split_at(value, ':');
  const auto text2 = split_at(text1.tail, ':');
  const auto number1 = split_at(text2.tail, ':');
  if (!text1.found || !text2.found || !number1.found) {
    return false;
  }
  copy_field(record.information1, text1.head);
  copy_field(record.information2, text2.head);
  record.number1 = to_int(number1.head);
  record.number2 = to_int(split_at(number1.tail, ':').head);
  return true;
}

std::string information_value(const AlbumUserInfo& record) {
  return format("%s:%s:%d:%d", std::string(field_text(record.information1)).c_str(),
                std::string(field_text(record.information2)).c_str(), record.number1,
                record.number2);
}

FolderLine parse_folder_line(std::string_view line) {
  const auto value = split_at(without_line_end(line), '=');
  const auto folder = split_at(value.tail, ':');
  return {.has_value = value.found,
          .has_folder = folder.found,
          .right = folder.head,
          .folder = folder.tail};
}

std::string with_folder(std::string_view text, std::string_view user, std::string_view folder,
                        int right) {
  return edit_sections(text, user, folder,
                       format("album=%d:%s\n", right, std::string(folder).c_str()));
}

std::string without_folder(std::string_view text, std::string_view user, std::string_view folder) {
  return edit_sections(text, user, folder, "");
}

AlbumLock::AlbumLock() {
  for (int attempt = 1; !take_lock_file(paths::kAlbumLock) && attempt < kAttempts; ++attempt) {
    sleep(kSecondsBetween);
  }
}

AlbumLock::~AlbumLock() {
  if (!stays_) {
    release_lock_file(paths::kAlbumLock);
  }
}

int AlbumLock::end_rewrite(Result result) {
  // Kept: behind a file that was not copied back the lock stays, and the next change waits for it
  // in vain.
  stays_ = result == FSH_FAILED;
  // Without a temporary file nothing is changed, and that is no failure.
  return result == FSH_OK || result == FSH_NO_TEMPORARY ? 0 : -1;
}

}  // namespace filesharing
