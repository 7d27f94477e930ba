/* The C library's waits, recorded instead of endured. */
#ifndef TESTS_RECORDED_CALLS_H
#define TESTS_RECORDED_CALLS_H

#include <functional>

extern const char* const kCommandLog;

/* Runs the action in the nth sleep from now on; an empty one forgets an earlier action. */
void set_sleep_action(int nth, std::function<void()> action);

/* The same in each sync. */
void set_sync_action(std::function<void()> action);

#endif
