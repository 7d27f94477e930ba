#include "album/album_file.h"

#include <functional>

#include "conf/text.h"
#include "platform/samba/samba.h"

namespace filesharing {

namespace {

constexpr std::string_view kInformation = "information";

std::string_view without_blanks(std::string_view name) {
  constexpr std::string_view kBlanks = " \t";
  name.remove_prefix(std::min(name.find_first_not_of(kBlanks), name.size()));
  return name.substr(0, name.find_last_not_of(kBlanks) + 1);
}

// Takes the next piece of a line off the front of rest, without its line feed.
std::string_view take_piece(std::string_view& rest) {
  const std::string_view piece = rest.substr(0, kLongestAlbumLine);
  const Halves line = split_at(piece, '\n');
  rest.remove_prefix(line.head.size() + (line.found ? 1 : 0));
  return line.head;
}

// Rewrites the section of a user: keep tells for each line that is neither the header nor the
// information whether it stays; end gives what is added behind the last one.
std::string edit_section(std::string_view text, std::string_view user,
                         const std::function<bool(std::string_view line)>& keep,
                         const std::function<std::string()>& end) {
  std::string result;
  bool inside = false;
  while (!text.empty()) {
    const std::string_view line = take_piece(text);
    if (line.empty()) {
      continue;
    }
    if (is_header(line)) {
      result += inside ? end() : "";
      inside = is_header_of(line, user);
    } else if (inside && !line.starts_with(kInformation) && !keep(line)) {
      continue;
    }
    result.append(line).append("\n");
  }
  return result + (inside ? end() : "");
}

}  // namespace

bool can_be_user(std::string_view name) {
  constexpr std::string_view kRefused("]\n\0", 3);
  return !without_blanks(name).empty() && name.find_first_of(kRefused) == std::string_view::npos;
}

std::optional<std::string_view> header_user(std::string_view line) {
  const Halves header = split_at(line, ']');
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
  const Halves text1 = split_at(value, ':');
  const Halves text2 = split_at(text1.tail, ':');
  const Halves number1 = split_at(text2.tail, ':');
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
  const Halves value = split_at(without_line_end(line), '=');
  const Halves folder = split_at(value.tail, ':');
  return {.has_value = value.found,
          .has_folder = folder.found,
          .right = folder.head,
          .folder = folder.tail};
}

std::string with_folder(std::string_view text, std::string_view user, std::string_view folder,
                        int right) {
  bool present = false;
  const auto keep = [&](std::string_view line) {
    const FolderLine entry = parse_folder_line(line);
    present = present || (entry.has_folder && entry.folder == folder);
    return entry.has_value;
  };
  const auto end = [&] {
    const bool missing_one = !present;
    present = false;
    return missing_one ? format("album=%d:%s\n", right, std::string(folder).c_str())
                       : std::string();
  };
  return edit_section(text, user, keep, end);
}

std::string without_folder(std::string_view text, std::string_view user, std::string_view folder) {
  const auto keep = [&](std::string_view line) {
    const FolderLine entry = parse_folder_line(line);
    return entry.has_folder && entry.folder != folder;
  };
  return edit_section(text, user, keep, [] { return std::string(); });
}

}  // namespace filesharing
