/* A caller in C: the records are filled as C sees them, and lists are walked and freed. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "filesharing/filesharing.h"

#define EXPECT(condition)                                     \
  do {                                                        \
    if (!(condition)) {                                       \
      fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
      exit(1);                                                \
    }                                                         \
  } while (0)

static void look_up_a_user(void) {
  UserInfo bob;
  memset(&bob, 'x', sizeof bob);
  strcpy(bob.name, "bob");
  EXPECT(GetUserInfo(&bob) == FSH_OK);
  EXPECT(strcmp(bob.description, "Bob Fisher") == 0);
  EXPECT(strcmp(bob.password, FSH_PASSWORD_PLACEHOLDER) == 0);
  EXPECT(bob.quota == 1000 && bob.uid == 2001);
}

static void walk_the_names(void) {
  static const char* const kNames[] = {"admin", "guest", "alice", "bob", "carol"};
  UserNameItem* head;
  size_t count = 0;
  EXPECT(GetUserNameList(&head) == FSH_OK);
  for (const UserNameItem* item = head; item; item = item->next, ++count) {
    EXPECT(count < sizeof kNames / sizeof *kNames && strcmp(item->name, kNames[count]) == 0);
  }
  EXPECT(count == GetNumOfUsers());
  FreeUserNameList(head);
}

int main(void) {
  EXPECT(GetUserInfo(NULL) == FSH_ARGUMENT);
  look_up_a_user();
  walk_the_names();
  return 0;
}
