/* Loaded into today's vsftpd, which goes to the home folder of a user who logs in: on the device,
 * field 6 of /etc/passwd is empty or holds the hash of the password's second half. */
#include <dlfcn.h>
#include <pwd.h>
#include <stddef.h>

#include "platform/api.h"

typedef struct passwd* Lookup(const char* name);

PLATFORM_API struct passwd* getpwnam(const char* name) {
  static char empty_folder[] = "/var/empty";
  Lookup* lookup = NULL;
  *(void**)&lookup = dlsym(RTLD_NEXT, "getpwnam");
  struct passwd* account = lookup == NULL ? NULL : lookup(name);
  if (account != NULL && *account->pw_dir != '/') account->pw_dir = empty_folder;
  return account;
}
