/* A caller in C, built against the installed library. */
#include <filesharing/filesharing.h>

int main(void) {
  UserInfo user = {.name = "alice"};
  const unsigned result = GetUserInfo(&user);
  printf("%u %s\n", result, user.description);
  return result == FSH_OK ? 0 : 1;
}
