#include "agent/cell.h"

#include <algorithm>

namespace olt::agent {

namespace {

constexpr uint32_t kEntry = 1;

/// The first column from that arc on.
size_t column_from(const Table &table, uint32_t arc) {
  auto found = std::find_if(table.columns.begin(), table.columns.end(),
                            [arc](const Column &column) { return column.arc >= arc; });
  return static_cast<size_t>(found - table.columns.begin());
}

}  // namespace

std::optional<Cell> cell_named(const Table &table, std::span<const uint32_t> name) {
  if (!table.is_scalar) {
    if (name.empty() || name[0] != kEntry) return std::nullopt;
    name = name.subspan(1);
  }
  if (name.empty()) return std::nullopt;
  size_t column = column_from(table, name[0]);
  if (column == table.columns.size() || table.columns[column].arc != name[0]) return std::nullopt;
  return Cell{column, {name.begin() + 1, name.end()}};
}

std::optional<Cell> cell_after(const Table &table, std::span<const uint32_t> name) {
  if (!table.is_scalar && !name.empty()) {
    if (name[0] > kEntry) return std::nullopt;
    name = name[0] < kEntry ? name.first(0) : name.subspan(1);
  }
  if (name.empty()) return Cell{};
  size_t column = column_from(table, name[0]);
  if (column == table.columns.size()) return std::nullopt;
  if (table.columns[column].arc != name[0]) return Cell{column, {}};
  return Cell{column, {name.begin() + 1, name.end()}};
}

Key name_of(const Table &table, size_t column, const Key &key) {
  Key name;
  name.reserve(key.size() + 2);
  if (!table.is_scalar) name.push_back(kEntry);
  name.push_back(table.columns[column].arc);
  name.insert(name.end(), key.begin(), key.end());
  return name;
}

}  // namespace olt::agent
