// Copies that were cut short.
#ifndef FILESHARE_CUT_COPY_H
#define FILESHARE_CUT_COPY_H

namespace fileshare {

// A change writes a file anew as a temporary file and copies that over it. Where the copy was cut
// short, the temporary file still holds the whole: puts it in its place, for the files of the
// shares, of which most have no other copy. Returns the status.
int finish_cut_copies();

}  // namespace fileshare

#endif
