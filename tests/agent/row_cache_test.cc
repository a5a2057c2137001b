#include "agent/row_cache.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include "agent/worker.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
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
  EXPECT_EQ(next->answer->row.record, Bytes{42});
  EXPECT_EQ(next->read, kNow);
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
  EXPECT_EQ(none->answer->outcome, Outcome::kNone);
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
  for (uint32_t i = 1; i <= 600; ++i) {
    cache.add(table, Selection::kThis, {i}, {Outcome::kFound, {{i}, {}}}, kNow);
  }
  EXPECT_FALSE(cache.find(table, Selection::kThis, {88}, kNow));
  EXPECT_TRUE(cache.find(table, Selection::kThis, {89}, kNow));
  EXPECT_TRUE(cache.find(table, Selection::kThis, {600}, kNow));
}

TEST(RowCache, AnswersAsItWasToldLast) {
  RowCache cache;
  Table table;
  cache.add(table, Selection::kThis, {7}, {Outcome::kFound, {{7}, {1}}}, kNow);
  cache.add(table, Selection::kNext, {6}, {Outcome::kFound, {{7}, {2}}}, kNow);
  // With these, the older of the two rows leaves, but not the newer one.
  for (uint32_t i = 101; i <= 611; ++i)
    cache.add(table, Selection::kThis, {i}, {Outcome::kNone}, kNow);
  auto row = cache.find(table, Selection::kThis, {7}, kNow);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->answer->row.record, Bytes{2});
  cache.add(table, Selection::kThis, {612}, {Outcome::kNone}, kNow);
  EXPECT_FALSE(cache.find(table, Selection::kThis, {7}, kNow));
}

TEST(RowCache, HandsAWalkToTheFirstWhoFindsItsRow) {
  RowCache cache;
  Table table;
  auto walk = std::make_shared<agent::Walk>();
  cache.add(table, Selection::kNext, {1}, {Outcome::kFound, {{2}, {}}}, kNow, walk);
  auto first = cache.find(table, Selection::kNext, {1}, kNow);
  auto second = cache.find(table, Selection::kNext, {1}, kNow);
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->walk, walk);
  EXPECT_EQ(second->walk, nullptr);
}

}  // namespace

}  // namespace olt::test
