/* All of libfilesharing. */
#ifndef FILESHARING_FILESHARING_H
#define FILESHARING_FILESHARING_H

#include "filesharing/album.h"
#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/media.h"
#include "filesharing/results.h"
#include "filesharing/services.h"
#include "filesharing/shares.h"
#include "filesharing/types.h"
#include "filesharing/users.h"

#endif
