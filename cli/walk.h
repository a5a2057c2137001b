/// Walks of SNMP tables: all rows, one behind the other, by the operations that read one.
#ifndef OLT_CLI_WALK_H
#define OLT_CLI_WALK_H

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

#include "cli/access.h"
#include "cli/call.h"
#include "cli/readers.h"

namespace olt::cli {

/// A row: its columns by name, those of the index first.
using Row = nlohmann::ordered_json;

/// One way through one table.
class Walk {
 public:
  /// Opens the box. Throws Error when there is no such reader.
  Walk(Access &box, const std::string &reader, bool secrets);

  /// Nothing behind the last row. Throws Error.
  std::optional<Row> next();

 private:
  bool step();
  void add_index(Row &row) const;
  void add_columns(Row &row, const Call &call) const;
  void check(const catalog::Operation &operation, int32_t result) const;

  const Access &box_;
  const Reader &reader_;
  bool secrets_;
  Call step_;  ///< its first argument names the row that was read last
};

/// Rows below the names of their columns.
std::string rows_text(const std::vector<Row> &rows);

/// A line of JSON.
std::string row_line(const std::string &reader, const Row &row);

}  // namespace olt::cli

#endif
