#include "page.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

void begin_page(const char* status, const char* title) {
  printf("Status: %s\r\nContent-Type: text/html; charset=utf-8\r\n\r\n", status);
  printf("<!DOCTYPE html>\n<title>%s</title>\n<h1>%s</h1>\n", title, title);
}

void end_page(void) {
  puts("<p><a href=\"list_users.cgi\">All users</a></p>");
}

void put_text(const char* text) {
  for (; *text; ++text) {
    switch (*text) {
      case '&':
        fputs("&amp;", stdout);
        break;
      case '<':
        fputs("&lt;", stdout);
        break;
      case '>':
        fputs("&gt;", stdout);
        break;
      case '"':
        fputs("&quot;", stdout);
        break;
      case '\'':
        fputs("&#39;", stdout);
        break;
      default:
        putchar(*text);
    }
  }
}

int read_form(char* body, size_t size) {
  static const char kType[] = "application/x-www-form-urlencoded";
  const char* type = getenv("CONTENT_TYPE");
  const char* length = getenv("CONTENT_LENGTH");
  if (!type || strncmp(type, kType, sizeof kType - 1) != 0 || !length) return 0;
  const long bytes = strtol(length, NULL, 10);
  if (bytes < 0 || (size_t)bytes >= size) return 0;
  if (fread(body, 1, (size_t)bytes, stdin) != (size_t)bytes) return 0;
  body[bytes] = '\0';
  return 1;
}

static int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

/* Decodes the character at *from and steps over it. 0 for what can not be decoded. */
static char decoded(const char** from) {
  const char c = *(*from)++;
  if (c == '+') return ' ';
  if (c != '%') return c;
  const int high = hex_digit((*from)[0]);
  const int low = high < 0 ? -1 : hex_digit((*from)[1]);
  if (low < 0) return '\0';
  *from += 2;
  return (char)(high * 16 + low);
}

static int decode(const char* from, const char* end, char* value, size_t size) {
  while (from < end) {
    const char c = decoded(&from);
    if (c == '\0' || --size == 0) return 0;
    *value++ = c;
  }
  *value = '\0';
  return 1;
}

int form_field(const char* body, const char* name, char* value, size_t size) {
  const size_t length = strlen(name);
  for (const char* field = body; field; field = strchr(field, '&')) {
    if (*field == '&') ++field;
    const char* end = field + strcspn(field, "&");
    if (strncmp(field, name, length) == 0 && field[length] == '=') {
      return decode(field + length + 1, end, value, size);
    }
  }
  return 0;
}
