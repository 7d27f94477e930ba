// fileshare user add, update, rename, set-password, quota, delete, delete-all.
#ifndef FILESHARE_USER_CHANGE_VERBS_H
#define FILESHARE_USER_CHANGE_VERBS_H

#include "cli/verbs.h"

namespace fileshare {

// Adds the verbs to the group "user".
void add_user_change_verbs(CLI::App& group);

}  // namespace fileshare

#endif
