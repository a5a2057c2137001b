#include "base/table.h"

#include <algorithm>
#include <string_view>

#include "base/width.h"

namespace olt {

namespace {

constexpr size_t kGap = 2;

void add_line(std::string &text, const TableRow &cells, const std::vector<size_t> &widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.append(kGap, ' ');
    line += cells[i];
    line.append(widths[i] - display_width(cells[i]), ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  text += line + '\n';
}

std::vector<size_t> widths_of(const std::vector<TableRow> &rows) {
  std::vector<size_t> widths;
  for (const TableRow &row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], display_width(row[i]));
  }
  return widths;
}

size_t widest(const TableRow &cells) {
  size_t width = 0;
  for (const std::string &cell : cells) width = std::max(width, display_width(cell));
  return width;
}

/// The cell in pieces of at most so many columns, but of at least one character.
TableRow pieces_of(std::string_view cell, size_t columns) {
  TableRow pieces;
  do {
    size_t end = fitting(cell, columns).size();
    if (end == 0 && !cell.empty()) end = first_character(cell).bytes;
    pieces.emplace_back(cell.substr(0, end));
    cell.remove_prefix(end);
  } while (!cell.empty());
  return pieces;
}

/// A line for each cell, after its name. What does not fit continues below.
std::string block_text(const TableRow &names, const TableRow &cells, size_t columns) {
  size_t before = widest(names) + kGap;
  std::vector<TableRow> lines;
  for (size_t i = 0; i < cells.size(); ++i) {
    std::string name = names[i];
    for (std::string &piece : pieces_of(cells[i], columns - std::min(columns, before))) {
      lines.push_back({std::move(name), std::move(piece)});
      name.clear();
    }
  }
  return table_text(lines);
}

}  // namespace

std::string table_text(const std::vector<TableRow> &rows, Rule rule) {
  std::vector<size_t> widths = widths_of(rows);
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

std::string table_text_within(const std::vector<TableRow> &rows, size_t columns) {
  std::vector<size_t> widths = widths_of(rows);
  size_t width = 0;
  for (size_t one : widths) width += one + kGap;
  if (width <= columns + kGap) return table_text(rows);
  std::string text;
  for (size_t i = 1; i < rows.size(); ++i) {
    if (i > 1) text += '\n';
    text += block_text(rows[0], rows[i], columns);
  }
  return text;
}

}  // namespace olt
