#include "agent/cell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace olt::test {

namespace {

using agent::Cell;
using agent::Key;
using agent::Table;

/// Columns 10 and 14.
Table two_columns(bool is_scalar) {
  Table table;
  table.is_scalar = is_scalar;
  table.columns.push_back({.arc = 10});
  table.columns.push_back({.arc = 14});
  return table;
}

std::string named(const Table &table, const Key &name) {
  auto cell = agent::cell_named(table, name);
  return cell ? std::to_string(cell->column) + ":" + agent::oid_text(cell->key) : "none";
}

std::string after(const Table &table, const Key &name) {
  auto cell = agent::cell_after(table, name);
  return cell ? std::to_string(cell->column) + ":" + agent::oid_text(cell->key) : "none";
}

TEST(Cell, IsNamedByEntryColumnAndIndex) {
  const Table table = two_columns(false);
  EXPECT_EQ(named(table, {1, 10, 7, 8}), "0:7.8");
  EXPECT_EQ(named(table, {1, 14}), "1:");
  for (const Key &name : {Key{}, Key{1}, Key{1, 11, 7}, Key{2, 10, 7}, Key{1, 15, 1}}) {
    EXPECT_EQ(named(table, name), "none") << agent::oid_text(name);
  }
  EXPECT_EQ(named(two_columns(true), {14, 0}), "1:0");
}

TEST(Cell, AfterAnyNameIsLookedForWhereItCanBe) {
  const Table table = two_columns(false);
  EXPECT_EQ(after(table, {}), "0:");
  EXPECT_EQ(after(table, {0, 99, 1}), "0:");
  EXPECT_EQ(after(table, {1}), "0:");
  EXPECT_EQ(after(table, {1, 1, 5}), "0:");
  EXPECT_EQ(after(table, {1, 10}), "0:");
  EXPECT_EQ(after(table, {1, 10, 7}), "0:7");
  EXPECT_EQ(after(table, {1, 11, 7}), "1:");
  EXPECT_EQ(after(table, {1, 14, 7, 4294967295}), "1:7.4294967295");
  EXPECT_EQ(after(table, {1, 15}), "none");
  EXPECT_EQ(after(table, {2}), "none");
  EXPECT_EQ(after(two_columns(true), {10, 0}), "0:0");
}

TEST(Cell, HasTheNameThatItIsFoundBy) {
  EXPECT_EQ(agent::name_of(two_columns(false), 1, {7, 8}), (Key{1, 14, 7, 8}));
  EXPECT_EQ(agent::name_of(two_columns(true), 0, {0}), (Key{10, 0}));
}

}  // namespace

}  // namespace olt::test
