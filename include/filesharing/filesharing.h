/* All of libfilesharing. */
#ifndef FILESHARING_FILESHARING_H
#define FILESHARING_FILESHARING_H

#include "filesharing/conf.h"
#include "filesharing/groups.h"
#include "filesharing/results.h"
#include "filesharing/types.h"
#include "filesharing/users.h"

#endif
