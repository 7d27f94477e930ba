// References to the folders that the media servers publish: "/SHARE" or "/SHARE/SUB/FOLDER".
#ifndef FILESHARING_MEDIA_FOLDER_REFERENCE_H
#define FILESHARING_MEDIA_FOLDER_REFERENCE_H

#include <string>

#include "conf/result.h"
#include "filesharing/types.h"

namespace filesharing {

struct FolderReference {
  std::string share;
  std::string folder;  // empty, or a slash and the folder within the share
};

// What a reference leads to.
struct ResolvedFolder {
  enum class State { kThere, kNoShare, kNoFolder };
  State state;
  FolderReference reference;  // when the state is kThere

  bool there() const { return state == State::kThere; }
};

ResolvedFolder resolve_folder(const std::string& reference);

// The record of a share: FSH_OK, or the code of GetShareInfo. A name that no share can have is
// unknown, whatever it would be if it were cut to its field.
Result find_share(const std::string& name, ShareInfo& share);

// The reference's folder when it resolves, and the record of its share; false otherwise.
bool find_folder(const std::string& path, FolderReference& reference, ShareInfo& share);

}  // namespace filesharing

#endif
