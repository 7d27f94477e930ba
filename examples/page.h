/* What the pages share: writing HTML, and reading the fields of a form. */
#ifndef EXAMPLES_PAGE_H
#define EXAMPLES_PAGE_H

#include <stddef.h>

/* Begins a page with a status line such as "200 OK", or ends it. */
void begin_page(const char* status, const char* title);
void end_page(void);

/* Writes a text so that the browser shows it as it is: the account files hold whatever anybody put
 * into them. */
void put_text(const char* text);

/* Reads the form that was posted, at most size - 1 bytes, into body. 1; 0: it is none, or too
 * large. */
int read_form(char* body, size_t size);

/* Copies a field of the form into value of size bytes, decoded. 1; 0: it is missing, or does not
 * fit, or contains a zero byte: cutting it would save something else than what was typed. */
int form_field(const char* body, const char* name, char* value, size_t size);

#endif
