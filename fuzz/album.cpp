// The file of the photo album's users. Input: a user, a folder, then the file.
#include "album/album_file.h"
#include "conf/text.h"
#include "fuzz/fuzz_input.h"
#include "platform/profile/profile_text.h"

namespace {

using namespace filesharing;

void parse_lines(std::string_view text, const std::string& user) {
  while (!text.empty()) {
    const std::string_view line = take_line(text);
    AlbumUserInfo record = {};
    if (parse_information(line, record)) {
      AlbumUserInfo again = {};
      fuzz::require(parse_information(information_value(record), again));
      fuzz::require(again.number2 == record.number2);
    }
    // The profile library changes the sections of the same users.
    fuzz::require(!can_be_user(user) ||
                  is_header_of(line, user) == profile::is_header_of(line, user));
    const FolderLine folder = parse_folder_line(line);
    fuzz::require(!folder.has_folder || folder.has_value);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string user = input.take_line();
  const std::string folder = input.take_line();
  const std::string text = input.rest();
  parse_lines(text, user);
  const std::string without = without_folder(text, user, folder);
  fuzz::require(without.size() <= text.size() + text.size() / kLongestAlbumLine + 1);
  (void)with_folder(text, user, folder, 1);
  return 0;
}
