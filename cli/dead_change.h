// Changes whose process died before it ended, told from what it left.
#ifndef FILESHARE_DEAD_CHANGE_H
#define FILESHARE_DEAD_CHANGE_H

#include <vector>

namespace fileshare {

// The masks of FshFile of the changes that died while they wrote, so that their files are to be
// restored. A change that died earlier has written nothing, one that died later is done; neither
// is listed, since its copies would undo what is whole.
std::vector<int> half_done_changes();

}  // namespace fileshare

#endif
