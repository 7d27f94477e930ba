// Restarting inetd, which starts a service when a client connects, after its file was rewritten.
#ifndef FILESHARING_CONF_INETD_H
#define FILESHARING_CONF_INETD_H

#include "conf/result.h"

namespace filesharing {

// Opens /etc/inetd.conf to every reader again and stops the inetd that runs.
void stop_inetd();

// Starts inetd a second later, in a process of its own: the one that is stopped has let go of its
// ports by then. FSH_OK, at once.
Result start_inetd_detached();

}  // namespace filesharing

#endif
