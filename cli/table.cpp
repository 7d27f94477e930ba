#include "cli/table.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "cli/utf8.h"

namespace fileshare {
namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 4;  // a column is never squeezed further
constexpr std::size_t kUsualWidth = 80;

struct Column {
  std::size_t width = 0;
  bool number = false;
};

std::vector<Column> natural_columns(const std::vector<Row>& rows) {
  std::vector<Column> columns(rows.front().size());
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      columns[i].width = std::max(columns[i].width, columns_of(row[i].text));
      columns[i].number = columns[i].number || row[i].number;
    }
  }
  return columns;
}

std::size_t total_width(const std::vector<Column>& columns) {
  std::size_t total = (columns.size() - 1) * kGap;
  for (const Column& column : columns) total += column.width;
  return total;
}

void squeeze(std::vector<Column>& columns, std::size_t width) {
  for (std::size_t total = total_width(columns); total > width; --total) {
    Column* widest = nullptr;
    for (Column& column : columns) {
      const bool can_give = !column.number && column.width > kNarrowest;
      if (can_give && (widest == nullptr || column.width > widest->width)) widest = &column;
    }
    if (widest == nullptr) return;
    --widest->width;
  }
}

std::string format_row(const Row& row, const std::vector<Column>& columns) {
  std::string line;
  std::size_t owed = 0;  // blanks that are due before the next text
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string text = cut_to_columns(row[i].text, columns[i].width);
    const std::size_t spare = columns[i].width - columns_of(text);
    if (!text.empty()) {
      line.append(owed + (columns[i].number ? spare : 0), ' ').append(text);
      owed = 0;
    }
    owed += kGap + (text.empty() || !columns[i].number ? spare : 0);
  }
  return line + '\n';
}

}  // namespace

std::string format_table(const std::vector<Row>& rows, std::size_t width) {
  if (rows.empty() || rows.front().empty()) return {};
  std::vector<Column> columns = natural_columns(rows);
  squeeze(columns, width);
  std::string text;
  for (const Row& row : rows) text += format_row(row, columns);
  return text;
}

std::size_t terminal_width() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return size.ws_col;
}

}  // namespace fileshare
