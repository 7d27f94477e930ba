// fileshare share removable-add and removable-remove.
#ifndef FILESHARE_REMOVABLE_VERBS_H
#define FILESHARE_REMOVABLE_VERBS_H

#include "cli/verbs.h"

namespace fileshare {

// Adds the verbs to the group "share".
void add_removable_verbs(CLI::App& group);

}  // namespace fileshare

#endif
