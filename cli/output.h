// What verbs show. A verb describes it once, as JSON; --json prints that, else it becomes a table
// or lines.
#ifndef FILESHARE_OUTPUT_H
#define FILESHARE_OUTPUT_H

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace fileshare {

using Json = nlohmann::ordered_json;  // members keep the order in which they were written

// Adds the flag --json.
void add_json(CLI::App& verb, bool& json);

// Prints a list of objects: as JSON, or as a table with a column for each of keys, whose title is
// the key in capitals. Lists within a cell are joined by ", ".
void print_list(const Json& list, const std::vector<std::string>& keys, bool json);

// Prints one object: as JSON, or as a line for each member.
void print_record(const Json& record, bool json);

}  // namespace fileshare

#endif
