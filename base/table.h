/// Tables with aligned columns.
#ifndef OLT_BASE_TABLE_H
#define OLT_BASE_TABLE_H

#include <string>
#include <vector>

namespace olt {

using TableRow = std::vector<std::string>;

/// Whether the first row is a heading with a line of dashes below it.
enum class Rule { kNone, kBelowFirst };

/// The rows, a line each: cells as wide as the widest of their column, two blanks between them.
std::string table_text(const std::vector<TableRow> &rows, Rule rule = Rule::kNone);

}  // namespace olt

#endif
