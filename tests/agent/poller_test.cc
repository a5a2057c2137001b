#include "agent/poller.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using agent::Outcome;
using agent::Poller;
using agent::Table;
using agent::Task;
using catalog::Layout;

constexpr size_t kState = 24;
constexpr size_t kSeconds = 28;

std::vector<Table> onus_alone() {
  std::vector<Table> tables = agent::enterprise_tables(Layout::box());
  std::erase_if(tables, [](const Table &table) { return table.name != "oltOnu"; });
  return tables;
}

class PollerOfOnus : public testing::Test {
 protected:
  /// A round of the table. @return the events found
  std::vector<agent::Event> round(const std::vector<std::pair<uint8_t, uint8_t>> &rows) {
    std::vector<agent::Event> events;
    for (size_t i = 0; i <= rows.size(); ++i) {
      now_ += 10ms;
      auto task = poller_.next(now_);
      if (!task) throw std::runtime_error("no task");
      task->answer.outcome = Outcome::kNone;
      if (i < rows.size()) {
        Bytes record(148);
        record[kState] = rows[i].first;
        record[kSeconds] = rows[i].second;
        task->answer = {Outcome::kFound, {{1, 1, static_cast<uint32_t>(i + 1)}, record}};
      }
      if (auto change = poller_.take(*task)) events.push_back(change->event);
    }
    return events;
  }

  std::vector<Table> tables_ = onus_alone();
  Poller poller_{tables_, Layout::box(), 10ms};
  Poller::Clock::time_point now_{1000s};
};

using Events = std::vector<agent::Event>;
using agent::Event;

TEST_F(PollerOfOnus, ComparesWithTheFirstRound) {
  EXPECT_EQ(round({{1, 9}, {2, 0}}), Events{});
  EXPECT_EQ(round({{1, 9}, {2, 0}}), Events{});
  EXPECT_EQ(round({{3, 0}, {1, 0}}), (Events{Event::kOnuBlocked, Event::kOnuUp}));
  EXPECT_EQ(round({{3, 0}, {1, 1}}), Events{});
  EXPECT_EQ(round({{2, 0}, {1, 1}, {1, 0}}), (Events{Event::kOnuAway, Event::kOnuUp}));
}

TEST_F(PollerOfOnus, FindsWhatCameUpAgainInBetween) {
  EXPECT_EQ(round({{1, 100}}), Events{});
  now_ += 5s;
  EXPECT_EQ(round({{1, 3}}), Events{Event::kOnuUp});
  now_ += 5s;
  EXPECT_EQ(round({{1, 90}}), Events{});
  // A clock that is set back.
  EXPECT_EQ(round({{1, 60}}), Events{});
}

TEST_F(PollerOfOnus, ExpectsOtherTimesOfModulesThatStartedAnew) {
  EXPECT_EQ(round({{1, 100}}), Events{});
  poller_.forget_times();
  now_ += 5s;
  EXPECT_EQ(round({{1, 2}}), Events{});
}

TEST(PollerOfAllModules, AsksEachForSomething) {
  const std::vector<Table> tables = agent::enterprise_tables(Layout::box());
  Poller poller(tables, Layout::box(), 10ms);
  Poller::Clock::time_point now{1000s};
  std::map<std::string, unsigned> asked;
  for (int turn = 0; turn < 21; ++turn) {
    auto task = poller.next(now += 10ms);
    ASSERT_TRUE(task);
    ++asked[task->table->name];
    if (task->table->name == "oltOam") {
      EXPECT_EQ(task->key, agent::Key{0});
    }
    if (task->table->name == "oltRstpState") {
      EXPECT_EQ(task->selection, agent::Selection::kThis) << "asks no other module";
      EXPECT_EQ(task->key, (agent::Key{1, 1}));
    }
    task->answer = {Outcome::kFound, {{1, 1}, Bytes(200)}};
    EXPECT_FALSE(poller.take(*task));
  }
  const std::map<std::string, unsigned> expected = {
      {"oltOnu", 16}, {"oltBasicPort", 2}, {"oltUpdate", 1}, {"oltOam", 1}, {"oltRstpState", 1}};
  EXPECT_EQ(asked, expected);
}

TEST_F(PollerOfOnus, KeepsItsPace) {
  auto first = poller_.next(now_);
  ASSERT_TRUE(first);
  EXPECT_TRUE(first->is_fresh);
  EXPECT_FALSE(poller_.next(now_ + 1s)) << "the answer is out";
  first->answer.outcome = Outcome::kFailed;
  EXPECT_FALSE(poller_.take(*first));
  EXPECT_FALSE(poller_.next(now_ + 9ms));
  EXPECT_TRUE(poller_.next(now_ + 10ms));
}

}  // namespace

}  // namespace olt::test
