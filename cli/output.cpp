#include "cli/output.h"

#include <algorithm>
#include <iostream>

#include "cli/table.h"
#include "cli/utf8.h"

namespace fileshare {
namespace {

void print_json(const Json& value) {
  // The files may hold bytes that are not UTF-8, which JSON can not carry.
  std::cout << value.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

std::string shown(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return printable(value.get_ref<const std::string&>());
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (!value.is_array()) return value.dump();
  std::string joined;
  for (const Json& item : value) joined += (joined.empty() ? "" : ", ") + shown(item);
  return joined;
}

Cell cell_of(const Json& value) {
  return {shown(value), value.is_number()};
}

std::string title_of(std::string key) {
  std::transform(key.begin(), key.end(), key.begin(), [](char c) {
    if (c == '_') return ' ';
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return key;
}

std::string label_of(std::string key) {
  std::replace(key.begin(), key.end(), '_', ' ');
  return key + ':';
}

}  // namespace

void add_json(CLI::App& verb, bool& json) {
  verb.add_flag("--json", json, "Print JSON instead of text");
}

void print_list(const Json& list, const std::vector<std::string>& keys, bool json) {
  if (json) return print_json(list);
  std::vector<Row> rows(1);
  for (const std::string& key : keys) rows.front().push_back({title_of(key)});
  for (const Json& item : list) {
    Row row;
    for (const std::string& key : keys) row.push_back(cell_of(item.value(key, Json())));
    rows.push_back(std::move(row));
  }
  std::cout << format_table(rows, terminal_width());
}

void print_record(const Json& record, bool json) {
  if (json) return print_json(record);
  std::vector<Row> rows;
  // Numbers are not set to the right here: each line stands for itself.
  for (const auto& [key, value] : record.items()) rows.push_back({{label_of(key)}, {shown(value)}});
  // A record is read line by line, so nothing in it is cut.
  std::cout << format_table(rows, std::string::npos);
}

}  // namespace fileshare
