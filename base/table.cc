#include "base/table.h"

#include <algorithm>

namespace olt {

namespace {

/// Columns on a terminal, of text in UTF-8 without wide characters.
size_t width_of(const std::string &cell) {
  return static_cast<size_t>(std::count_if(
      cell.begin(), cell.end(), [](char c) { return (static_cast<uint8_t>(c) & 0xC0) != 0x80; }));
}

void add_line(std::string &text, const TableRow &cells, const std::vector<size_t> &widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line += "  ";
    line += cells[i];
    line.append(widths[i] - width_of(cells[i]), ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  text += line + '\n';
}

}  // namespace

std::string table_text(const std::vector<TableRow> &rows, Rule rule) {
  std::vector<size_t> widths;
  for (const TableRow &row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], width_of(row[i]));
  }
  std::string text;
  for (const TableRow &row : rows) {
    add_line(text, row, widths);
    if (rule == Rule::kNone || &row != &rows.front()) continue;
    TableRow dashes;
    for (size_t width : widths) dashes.emplace_back(width, '-');
    add_line(text, dashes, widths);
  }
  return text;
}

}  // namespace olt
