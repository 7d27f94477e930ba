// What lies outside the library while a target runs whole operations: commands, other processes,
// waits, and files that are served from memory.
//
// outside.cpp takes the place of the C library's system, fork, kill, sleep, usleep, sync, fopen and
// others in the programs that it is part of. The fuzzing engine, which calls them too, gets the
// real ones: they are replaced while an Outside exists and in its thread only.
#ifndef FUZZ_OUTSIDE_H
#define FUZZ_OUTSIDE_H

#include <string>

namespace fuzz {

struct ProcessEnded {};

class Outside {
 public:
  Outside();
  Outside(const Outside&) = delete;
  Outside& operator=(const Outside&) = delete;
  ~Outside();

  // Opening the path for reading gives this text from now on; it stays the caller's.
  static void serve(const char* path, std::string& text);

  // From now on fork gives the side of the child: what works detached is done in this process,
  // until ProcessEnded is thrown where the child would end. Otherwise it is left out.
  static void fork_to_child();

  // The nth command from now on ends with this status of system(3) and does nothing.
  static void fail_command(int nth, int status);
};

// What a call leaves behind on purpose, as its header says.
enum class Leaves { kNothing, kStreams, kStreamsAndMemory };

// Watches a call: demands that it leaves no other streams open (memory is the leak checker's), and
// closes and frees what it may leave.
class Leftovers {
 public:
  explicit Leftovers(Leaves allowed);
  Leftovers(const Leftovers&) = delete;
  Leftovers& operator=(const Leftovers&) = delete;
  ~Leftovers();

 private:
  Leaves allowed_;
};

}  // namespace fuzz

#endif
