/* Calls to the C library that can fail, made to fail one at a time: the test programs define these
 * functions themselves, and the dynamic linker prefers a program's definition. What the library
 * does in processes of its own is made to happen before its caller goes on, so that the calls have
 * an order. */
#ifndef TESTS_FAULTS_INTERPOSED_H
#define TESTS_FAULTS_INTERPOSED_H

#include <string>
#include <vector>

enum class Interposing {
  kNothing,
  kFaults,   /* calls are listed, and the nth fails; cp copies within the program */
  kCuts,     /* the same, but a cp that fails has cut its target and copied half */
  kCommands, /* no call fails, and commands other than cp do nothing */
};

/* From now on, in this process and those that it forks; nth 0 fails no call. */
void start_interposing(Interposing what, int nth = 0);
void stop_interposing();

/* The calls since the last start, of all processes, in order: "open /etc/passwd to read". */
std::vector<std::string> interposed_calls();

#endif
