// Changes whose process died before it ended, told from what it left.
#ifndef FILESHARE_DEAD_CHANGE_H
#define FILESHARE_DEAD_CHANGE_H

namespace fileshare {

// The files (of FshFile) of the changes that died while they wrote, which are to be restored. A
// change that died earlier has written nothing, one that died later is done; their files are not
// among them, since older copies would undo what is whole.
int half_done_files();

// Removes the copies that a change had not finished when it died: a later one that falls back on
// copies would cut the files to them. False when one could not be removed.
bool drop_cut_copies();

}  // namespace fileshare

#endif
