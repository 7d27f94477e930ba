// The files that locks guard and backups copy, under the names that the command line has for them.
#ifndef FILESHARE_GUARDED_FILES_H
#define FILESHARE_GUARDED_FILES_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace fileshare {

struct GuardedFile {
  const char* name;
  int bit;  // of FshFile; 0 for a lock of its own, which the library's mask does not reach
  const char* lock_path;
  const char* guards;
  const char* copied;  // its name in the conf folder of the configuration volume; null with bit 0
};

// In the order in which locks are taken and files copied.
const std::vector<GuardedFile>& guarded_files();

// Adds the names as arguments, none of them meaning all. backups: only those that backups copy.
void add_guarded_names(CLI::App& verb, std::vector<std::string>& names, const char* help,
                       bool backups);

// Whether the lock is there, whoever took it.
bool is_taken(const GuardedFile& file);

// Removes the lock; says so and gives kFailed when it stays.
int clear_lock(const GuardedFile& file);

bool is_chosen(const GuardedFile& file, const std::vector<std::string>& names);

}  // namespace fileshare

#endif
