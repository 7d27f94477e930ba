#include "album/album_path.h"

#include "conf/text.h"
#include "filesharing/shares.h"

namespace filesharing {

std::optional<AlbumPath> parse_album_path(const PhotoAlbumConf& settings) {
  const Halves start = split_at(field_text(settings.path), '/');
  if (!start.found) {
    return std::nullopt;
  }
  const Halves share = split_at(start.tail, '/');
  return AlbumPath{.share = std::string(share.head), .folder = std::string(share.tail)};
}

std::optional<ShareInfo> find_album_share(const AlbumPath& path) {
  ShareInfo share{};
  if (path.share.size() >= sizeof share.name) {
    return std::nullopt;  // cut to the field it could name another share
  }
  copy_field(share.name, path.share);
  if (GetShareInfo(&share) != FSH_OK) {
    return std::nullopt;
  }
  return share;
}

}  // namespace filesharing
