// The record of a user as a caller hands it in.
#ifndef FILESHARING_USERS_USER_RECORD_H
#define FILESHARING_USERS_USER_RECORD_H

#include "filesharing/types.h"

namespace filesharing {

// A copy in which every text ends within its field.
inline UserInfo terminated(UserInfo record) {
  record.name[sizeof record.name - 1] = '\0';
  record.description[sizeof record.description - 1] = '\0';
  record.password[sizeof record.password - 1] = '\0';
  return record;
}

}  // namespace filesharing

#endif
