/* Adds the user of a posted form: name, description and password.
 *
 * The web server runs this as root, and lets nobody but the administrator get here: the page itself
 * asks for no password. A page for use on more than a trusted network also has to make sure that
 * the form came from its own site.
 */
#include <filesharing/users.h>
#include <string.h>

#include "page.h"

/* The library takes what it is given, and the account files are lines of fields: whatever would
 * break a line, a list or a command is kept out here. */
static int has_any_of(const char* text, const char* characters) {
  for (; *text; ++text) {
    if ((unsigned char)*text < ' ' || *text == 0x7F || strchr(characters, *text)) return 1;
  }
  return 0;
}

/* What is wrong with the user, or null. */
static const char* fault_of(const UserInfo* user) {
  const char* name = user->name;
  if (name[0] == '\0') return "A user needs a name.";
  /* "-" begins an option of the tools that get the name; the others are special in the account
   * files. */
  if (strchr("-.#+@& ", name[0]) || name[strlen(name) - 1] == ' ' ||
      has_any_of(name, ":,=/[]\"'$\\`")) {
    return "This name can not be used.";
  }
  if (has_any_of(user->description, ":")) return "This description can not be used.";
  if (user->password[0] == '-' || has_any_of(user->password, "") ||
      strcmp(user->password, FSH_PASSWORD_PLACEHOLDER) == 0) {
    return "This password can not be used.";
  }
  return NULL;
}

/* The result of AddUser in words; null for one that tells the user nothing. */
static const char* in_words(unsigned result) {
  switch (result) {
    case FSH_OK:
      return "The user has been added.";
    case FSH_USER_EXISTS:
      return "There is a user of this name already.";
    case FSH_USER_NOT_ADDED:
      return "The accounts are being changed just now, or can not be written. Try again in a "
             "moment.";
    case FSH_QUOTA_FAILED:
      return "The quota could not be set.";
    default:
      return NULL;
  }
}

static void tell(const char* status, const char* words) {
  begin_page(status, "Add a user");
  printf("<p>%s</p>\n", words);
  end_page();
}

static void tell_result(unsigned result) {
  const char* words = in_words(result);
  if (words) {
    tell(result == FSH_OK ? "200 OK" : "409 Conflict", words);
    return;
  }
  begin_page("500 Internal Server Error", "Add a user");
  printf("<p>The user could not be added (result %u).</p>\n", result);
  end_page();
}

/* The sizes of the record's fields are the limits of what fits. A password counts by its first 15
 * characters; a longer one is refused rather than cut. */
static int read_user(UserInfo* user) {
  char body[1024];
  char password[16];
  if (!read_form(body, sizeof body) || !form_field(body, "name", user->name, sizeof user->name) ||
      !form_field(body, "description", user->description, sizeof user->description) ||
      !form_field(body, "password", password, sizeof password)) {
    return 0;
  }
  memcpy(user->password, password, sizeof password);
  return 1;
}

int main(void) {
  UserInfo user = {0};
  if (!read_user(&user)) {
    tell("400 Bad Request", "The form is not complete, or a field is too long.");
    return 0;
  }
  const char* fault = fault_of(&user);
  if (fault) {
    tell("400 Bad Request", fault);
  } else {
    tell_result(AddUser(&user));
  }
  return 0;
}
