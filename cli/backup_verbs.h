// The restore of one file, for the verbs that need it.
#ifndef FILESHARE_BACKUP_VERBS_H
#define FILESHARE_BACKUP_VERBS_H

#include "cli/guarded_files.h"

namespace fileshare {

// Puts the copy of a file that backups copy back over it. Prints an error line when that fails; the
// exit status.
int restore_file(const GuardedFile& file);

}  // namespace fileshare

#endif
