/// Tables with aligned columns.
#ifndef OLT_BASE_TABLE_H
#define OLT_BASE_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

namespace olt {

using TableRow = std::vector<std::string>;

/// Whether the first row is a heading with a line of dashes below it.
enum class Rule { kNone, kBelowFirst };

/// One line for each row; columns are as wide on a terminal as their widest cell, with two blanks
/// between them. Lines do not end with blanks.
std::string table_text(const std::vector<TableRow> &rows, Rule rule = Rule::kNone);

/// The table within so many columns of a terminal: as table_text() if that fits, else one block for
/// each row. The first row names the cells of the others.
std::string table_text_within(const std::vector<TableRow> &rows, size_t columns);

}  // namespace olt

#endif
