/* A module of PAM for the daemons of today: checks a password as those of the device do. Characters
 * 1 to 8 give the hash in field 2 of /etc/passwd, characters 9 to 15 the one in field 6; where that
 * holds none or a real home folder, the first 8 characters are all that counts. pam_unix would let
 * in whoever knows these of a longer password. (A module that runs a program is of no use: vsftpd
 * takes the end of any child for the end of its own.)
 *
 *   auth required /usr/libexec/filesharing/pam_filesharing.so
 */
#include <crypt.h>
#include <pwd.h>
#include <security/pam_ext.h>
#include <security/pam_modules.h>
#include <stdlib.h>
#include <string.h>

#include "platform/api.h"

enum { kHalf = 8, kMostCharacters = 15 };
static const char kRealHome[] = "/home/user";

/* A hash that begins with a star is no hash but crypt's way to refuse a salt. */
static int is_hash_of(const char* hash, const char* text, size_t most_characters) {
  char* half = strndup(text, most_characters);
  struct crypt_data* data = calloc(1, sizeof *data);
  const char* given = half == NULL || data == NULL ? NULL : crypt_r(half, hash, data);
  const int matches = given != NULL && *given != '*' && strcmp(given, hash) == 0;
  free(data);
  free(half);
  return matches;
}

static int is_password_of(const struct passwd* account, const char* password) {
  const char* second = account->pw_dir;
  const int has_second = *second != '\0' && strncmp(second, kRealHome, sizeof kRealHome - 1) != 0;
  const char* rest = password + strnlen(password, kHalf);
  return is_hash_of(account->pw_passwd, password, kHalf) &&
         (!has_second || is_hash_of(second, rest, kMostCharacters - kHalf));
}

PLATFORM_API int pam_sm_authenticate(pam_handle_t* pamh, int flags, int argc, const char** argv) {
  (void)flags, (void)argc, (void)argv;
  const char *user = NULL, *password = NULL;
  if (pam_get_user(pamh, &user, NULL) != PAM_SUCCESS ||
      pam_get_authtok(pamh, PAM_AUTHTOK, &password, NULL) != PAM_SUCCESS) {
    return PAM_AUTH_ERR;
  }
  char text[4096];
  struct passwd entry, *account = NULL;
  if (getpwnam_r(user, &entry, text, sizeof text, &account) != 0 || account == NULL) {
    return PAM_USER_UNKNOWN;
  }
  return is_password_of(account, password) ? PAM_SUCCESS : PAM_AUTH_ERR;
}

/* Nothing to set up for a user whose password was right. */
PLATFORM_API int pam_sm_setcred(pam_handle_t* pamh, int flags, int argc, const char** argv) {
  (void)pamh, (void)flags, (void)argc, (void)argv;
  return PAM_SUCCESS;
}
