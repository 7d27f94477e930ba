// Columns of text that fit a terminal.
#ifndef FILESHARE_TABLE_H
#define FILESHARE_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

namespace fileshare {

struct Cell {
  std::string text;
  bool number = false;  // stands at the right edge of its column and is never cut
};
using Row = std::vector<Cell>;

// The rows, all of one length, as lines of at most width columns: while they are wider, the widest
// column of text gives way and its cells are cut. Nothing stands behind the last cell of a line.
std::string format_table(const std::vector<Row>& rows, std::size_t width);

// The width of the terminal that standard output is, or 80.
std::size_t terminal_width();

}  // namespace fileshare

#endif
