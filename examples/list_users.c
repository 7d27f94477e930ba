/* The page of the users, with a form for one more. */
#include <filesharing/users.h>
#include <inttypes.h>

#include "page.h"

static void put_user(const char* name) {
  UserInfo user = {0};
  snprintf(user.name, sizeof user.name, "%s", name);
  fputs("<tr><td>", stdout);
  put_text(name);
  if (GetUserInfo(&user) == FSH_OK) {
    fputs("<td>", stdout);
    put_text(user.description);
    printf("<td>%" PRIu32 " MB\n", user.quota);
  } else {
    /* Somebody deleted the user just now, or the entry is damaged: the others are still shown. */
    puts("<td><td>unknown");
  }
}

static void put_users(const UserNameItem* users) {
  puts("<table>\n<tr><th>Name<th>Description<th>Quota");
  for (; users; users = users->next) put_user(users->name);
  puts("</table>");
}

static void put_form(void) {
  puts(
      "<form method=\"post\" action=\"add_user.cgi\">\n"
      "<input name=\"name\" maxlength=\"20\" placeholder=\"Name\" required>\n"
      "<input name=\"description\" maxlength=\"48\" placeholder=\"Description\">\n"
      "<input name=\"password\" type=\"password\" maxlength=\"15\" placeholder=\"Password\">\n"
      "<button>Add</button>\n"
      "</form>");
}

int main(void) {
  UserNameItem* users = NULL;
  const unsigned result = GetUserNameList(&users);
  if (result != FSH_OK) {
    begin_page("500 Internal Server Error", "Users");
    printf("<p>The users can not be listed (result %u).</p>\n", result);
    return 0;
  }
  begin_page("200 OK", "Users");
  put_users(users);
  put_form();
  FreeUserNameList(users);
  return 0;
}
