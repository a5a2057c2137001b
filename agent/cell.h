/// From the name of a variable to a cell of a table.
#ifndef OLT_AGENT_CELL_H
#define OLT_AGENT_CELL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "agent/objects.h"
#include "agent/rows.h"

namespace olt::agent {

struct Cell {
  size_t column = 0;  ///< its place in the table
  Key key;            ///< of any length
};

// The name is what follows the table's own object identifier.

/// The cell of that name; nothing when there is no such column.
std::optional<Cell> cell_named(const Table &table, std::span<const uint32_t> name);

/// Where the search for the first cell after that name begins: in that column, after that key.
/// Nothing when the table has no cell after it.
std::optional<Cell> cell_after(const Table &table, std::span<const uint32_t> name);

/// The name of the cell below the table's own object identifier.
Key name_of(const Table &table, size_t column, const Key &key);

}  // namespace olt::agent

#endif
