/// Walks of SNMP tables: all rows, in order, by the operations that read one.
#ifndef OLT_CLI_WALK_WALK_H
#define OLT_CLI_WALK_WALK_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalog/layout.h"
#include "cli/box/access.h"
#include "cli/call/call.h"
#include "cli/output/result.h"
#include "cli/walk/readers.h"

namespace olt::cli {

/// One walk through one table.
class Walk {
 public:
  /// Opens the box. Throws Error when there is no such reader, or the layout does not say how rows
  /// are found.
  Walk(Access &box, const catalog::Layout &layout, const std::string &reader, const Detail &detail);

  /// The operation that reads a row.
  const char *reader() const { return reader_.name; }

  /// The columns that rows have, those of the index first.
  std::vector<catalog::Field> columns() const;

  /// The columns of the next row, those of the index first; nothing after the last row. Throws
  /// Error.
  std::optional<NamedValues> next();

 private:
  void select(Call &call, uint32_t row) const;
  bool step();
  std::vector<catalog::Field> index_fields() const;
  NamedValues index() const;
  void add_columns(NamedValues &row, const Call &call) const;
  void check(const Call &call, int32_t result) const;

  const Access &box_;
  const catalog::Layout &layout_;
  const Reader &reader_;
  Detail detail_;
  catalog::RowSelection selection_;
  uint16_t end_of_table_;
  Call step_;  ///< its first argument names the row that was read last
};

}  // namespace olt::cli

#endif
