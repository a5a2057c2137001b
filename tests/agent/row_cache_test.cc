#include "agent/row_cache.h"

#include <gtest/gtest.h>

#include <chrono>

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using agent::Answer;
using agent::Outcome;
using agent::RowCache;
using agent::Selection;
using agent::Table;

const RowCache::Clock::time_point kNow{1000s};

TEST(RowCache, AnswersForTheKeyAndForTheRowFound) {
  RowCache cache;
  Table table;
  Table other;
  cache.add(table, Selection::kNext, {1, 1}, {Outcome::kFound, {{1, 2}, {42}}}, kNow);
  auto next = cache.find(table, Selection::kNext, {1, 1}, kNow);
  ASSERT_TRUE(next);
  EXPECT_EQ(next->row.record, Bytes{42});
  EXPECT_TRUE(cache.find(table, Selection::kThis, {1, 2}, kNow));
  EXPECT_FALSE(cache.find(table, Selection::kThis, {1, 1}, kNow));
  EXPECT_FALSE(cache.find(table, Selection::kNext, {1, 2}, kNow));
  EXPECT_FALSE(cache.find(other, Selection::kNext, {1, 1}, kNow));
}

TEST(RowCache, KeepsThatThereIsNoRowButNoFailure) {
  RowCache cache;
  Table table;
  cache.add(table, Selection::kNext, {9}, {Outcome::kNone}, kNow);
  cache.add(table, Selection::kNext, {8}, {Outcome::kFailed}, kNow);
  auto none = cache.find(table, Selection::kNext, {9}, kNow);
  ASSERT_TRUE(none);
  EXPECT_EQ(none->outcome, Outcome::kNone);
  EXPECT_FALSE(cache.find(table, Selection::kNext, {8}, kNow));
}

TEST(RowCache, ForgetsAfterASecondAndAfterAWrite) {
  RowCache cache;
  Table table;
  cache.add(table, Selection::kThis, {1}, {Outcome::kFound, {{1}, {}}}, kNow);
  EXPECT_TRUE(cache.find(table, Selection::kThis, {1}, kNow + 1s));
  EXPECT_FALSE(cache.find(table, Selection::kThis, {1}, kNow + 1001ms));
  cache.drop_all();
  EXPECT_FALSE(cache.find(table, Selection::kThis, {1}, kNow));
}

TEST(RowCache, KeepsTheLastRows) {
  RowCache cache;
  Table table;
  for (uint32_t i = 1; i <= 300; ++i) {
    cache.add(table, Selection::kThis, {i}, {Outcome::kFound, {{i}, {}}}, kNow);
  }
  EXPECT_FALSE(cache.find(table, Selection::kThis, {44}, kNow));
  EXPECT_TRUE(cache.find(table, Selection::kThis, {45}, kNow));
  EXPECT_TRUE(cache.find(table, Selection::kThis, {300}, kNow));
}

}  // namespace

}  // namespace olt::test
