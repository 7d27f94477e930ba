/* The program's own malloc and such, which run out of memory when told to. */
#ifndef TESTS_FAULTS_ALLOCATIONS_H
#define TESTS_FAULTS_ALLOCATIONS_H

/* From now on, in this process and those that it forks, the nth allocation fails; none for 0. */
void start_counting_allocations(int nth);
void stop_counting_allocations();

/* Since the start: how many there were in all processes, and how many blocks this one has not
 * freed. */
int allocations_counted();
int blocks_left();

#endif
