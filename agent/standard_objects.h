/// Objects of standard MIB modules, where a reader gives exactly what the standard means. Their
/// rows are made of rows of the enterprise tables. What a layout does not name is left out.
///
/// Interfaces have these numbers (ifIndex):
///
///   slot * 1,000 + port                                                 an Ethernet port
///   100,000,000 + slot * 1,000 + interface                              a PON interface
///   1,000,000,000 + slot * 10,000,000 + interface * 100,000 + ONU       an ONU
///
/// Ports of the bridge have (slot - 1) * 1,000 + port, as the bits of port lists count. Physical
/// entities have 1, the box, and the numbers of their interfaces.
#ifndef OLT_AGENT_STANDARD_OBJECTS_H
#define OLT_AGENT_STANDARD_OBJECTS_H

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "agent/objects.h"
#include "agent/rows.h"
#include "agent/value.h"
#include "catalog/layout.h"

namespace olt::agent {

/// How the index of a row becomes one number: the base, and each sub-identifier times its place.
struct Numbering {
  struct Digit {
    uint32_t place;
    uint32_t first;
    uint32_t last;
  };

  int64_t base;
  std::vector<Digit> digits;

  /// Nothing when a sub-identifier is out of range.
  std::optional<uint32_t> number_of(const Key &row) const;
  /// The rows after it are those whose numbers are greater; empty: all rows; nothing: none.
  std::optional<Key> row_at(uint32_t number) const;
};

extern const Numbering kPortNumbers;
extern const Numbering kPonNumbers;
extern const Numbering kOnuNumbers;
extern const Numbering kBridgePortNumbers;

/// The rows of a standard table.
class StandardRows : public RowSource {
 public:
  using Conversion = std::function<Value(const Key &row, ByteView record)>;

  /// Rows that come from one enterprise table.
  struct Part {
    Table source;
    std::optional<Numbering> numbering;  ///< nothing: the index is the same
    std::vector<Conversion> columns;     ///< as many as the standard table has
  };

  /// The numbers of a part are all greater than those of the one before.
  StandardRows(std::vector<Column> columns, std::vector<Part> parts)
      : columns_(std::move(columns)), parts_(std::move(parts)) {}

  Answer read(const RowReader &reader, Selection selection, const Key &key) const override;

  /// The bytes of the standard columns of a row.
  Bytes converted(const Part &part, const Row &row) const;
  const std::vector<Part> &parts() const { return parts_; }

 private:
  Answer read_this(const RowReader &reader, const Part &part, const Key &key) const;
  Answer read_next(const RowReader &reader, const Part &part, const Key &key) const;

  std::vector<Column> columns_;
  std::vector<Part> parts_;
};

std::vector<Table> standard_tables(const catalog::Layout &layout);

}  // namespace olt::agent

#endif
