/// Tables with aligned columns.
#ifndef OLT_BASE_TABLE_H
#define OLT_BASE_TABLE_H

#include <string>
#include <vector>

namespace olt {

using TableRow = std::vector<std::string>;

/// Whether the first row is a heading with a line of dashes below it.
enum class Rule { kNone, kBelowFirst };

/// One line for each row; columns are as wide as their widest cell, with two blanks between them.
std::string table_text(const std::vector<TableRow> &rows, Rule rule = Rule::kNone);

}  // namespace olt

#endif
