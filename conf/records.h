// Records as callers hand them in: a text may fill its field to the last byte.
#ifndef FILESHARING_CONF_RECORDS_H
#define FILESHARING_CONF_RECORDS_H

#include <cstddef>

#include "filesharing/types.h"

namespace filesharing {

template <std::size_t N>
void end_text(char (&field)[N]) {
  field[N - 1] = '\0';
}

// Ends every text of a record within its field.
inline void end_texts(UserInfo& user) {
  end_text(user.name);
  end_text(user.description);
  end_text(user.password);
}
inline void end_texts(ShareInfo& share) {
  end_text(share.name);
  end_text(share.comment);
  end_text(share.path);
}

}  // namespace filesharing

#endif
