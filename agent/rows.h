/// Rows of the modules' tables, read by their SNMP index.
#ifndef OLT_AGENT_ROWS_H
#define OLT_AGENT_ROWS_H

#include <cstdint>
#include <optional>

#include "agent/objects.h"
#include "base/text.h"
#include "catalog/layout.h"

namespace olt::agent {

/// The sub-identifiers of an index; of scalars, {0}.
using Key = std::vector<uint32_t>;

struct Row {
  Key key;
  Bytes record;  ///< the argument that holds the columns
};

enum class Selection : uint8_t {
  kThis,  ///< the row that the key names
  kNext,  ///< the first row after the key, which may be of any length
};

enum class Outcome : uint8_t { kFound, kNone, kFailed };

struct Answer {
  Outcome outcome = Outcome::kFailed;
  Row row{};           ///< when found
  int32_t result = 0;  ///< of the operation that failed
  uint8_t module = 0;  ///< asked last; 0: none, since that there is no row may be known without

  /// Whether the module did not answer, as opposed to one that refused.
  bool is_lost() const {
    return (static_cast<uint32_t>(result) & 0xffff0000U) != 0 && result != -1;
  }
};

/// Blocks until the modules have answered; for any thread.
class RowReader {
 public:
  explicit RowReader(const catalog::Layout &layout)
      : end_of_table_(layout.end_of_table()),
        selection_(layout.row_selection().value_or(catalog::RowSelection{})) {}

  Answer read(const Table &table, Selection selection, const Key &key) const;

  /// Writes these bytes over those of the column in the row, and leaves the others as they are.
  Answer write(const Table &table, const Column &column, const Key &key, ByteView bytes) const;

 private:
  Answer scalars(const Table &table, Selection selection, const Key &key) const;
  Answer count_rows(const Table &table) const;
  Answer select(const Table &table, Selection selection, const Key &key) const;
  Answer step(const Table &table, const Key &key) const;
  Answer not_read(const catalog::Operation &operation, int32_t result) const;

  std::optional<uint16_t> end_of_table_;
  catalog::RowSelection selection_;
};

/// Rows that are made of those of other tables. For any thread.
class RowSource {
 public:
  RowSource() = default;
  RowSource(const RowSource &) = delete;
  RowSource &operator=(const RowSource &) = delete;
  virtual ~RowSource() = default;

  /// As RowReader::read.
  virtual Answer read(const RowReader &reader, Selection selection, const Key &key) const = 0;
};

}  // namespace olt::agent

#endif
