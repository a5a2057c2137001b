#include "agent/worker.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "agent/objects.h"
#include "catalog/layout.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using agent::Answer;
using agent::DoneQueue;
using agent::Job;
using agent::Outcome;
using agent::RowCache;
using agent::RowReader;
using agent::Selection;
using agent::Table;
using agent::Walk;
using agent::Worker;

std::shared_ptr<Job> done(DoneQueue &queue) {
  pollfd readable = {.fd = queue.descriptor(), .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&readable, 1, 10'000), 1);
  return queue.take().front();
}

TEST(Worker, SaysWhichModuleAnAnswerIsOf) {
  Folder nobody;
  ASSERT_EQ(setenv("OLT_RUN_DIR", nobody.path().c_str(), 1), 0);
  const std::vector<Table> tables = agent::enterprise_tables(catalog::Layout::box());
  RowReader reader(catalog::Layout::box());
  RowCache cache;
  DoneQueue queue;
  Worker worker(reader, cache, queue);
  cache.add(tables[0], Selection::kThis, {0}, {Outcome::kFound, {{0}, {42}}});
  auto job = std::make_shared<Job>();
  job->tasks.resize(3);
  for (agent::Task &task : job->tasks) task = {.table = tables.data(), .key = {0}};
  job->tasks[1].is_fresh = true;
  job->tasks[2].selection = Selection::kNext;
  worker.submit(job);
  ASSERT_EQ(done(queue), job);
  EXPECT_EQ(job->tasks[0].answer.outcome, Outcome::kFound);
  EXPECT_FALSE(job->tasks[0].was_called);
  EXPECT_TRUE(job->tasks[1].answer.is_lost());
  EXPECT_TRUE(job->tasks[1].was_called);
  EXPECT_EQ(job->tasks[2].answer.outcome, Outcome::kNone);
  EXPECT_EQ(job->tasks[1].answer.module, 18);
  EXPECT_EQ(job->tasks[2].answer.module, 0);
}

/// Rows {1} to {100}.
class HundredRows : public agent::RowSource {
 public:
  Answer read(const RowReader & /*reader*/, Selection selection,
              const agent::Key &key) const override {
    uint32_t row = key.empty() ? 0 : key[0];
    if (selection == Selection::kNext) ++row;
    if (row < 1 || row > 100) return {Outcome::kNone};
    return {Outcome::kFound, {{row}, {static_cast<uint8_t>(row)}}};
  }
};

class WorkerThatReads : public testing::Test {
 protected:
  /// From the cache, as the agent does, or else by the worker.
  Answer next(const agent::Key &key) {
    if (auto known = cache_.find(table_, Selection::kNext, key)) {
      if (known->walk != nullptr) worker_.follow(known->walk);
      ++found_;
      return *known->answer;
    }
    auto job = std::make_shared<Job>();
    job->tasks.push_back({.table = &table_, .selection = Selection::kNext, .key = key});
    worker_.submit(job);
    done(queue_);
    return job->tasks[0].answer;
  }

  /// Waits for so many, and a little for more.
  uint32_t reads(uint32_t expected) const {
    for (int i = 0; i < 1000 && worker_.reads() < expected; ++i) std::this_thread::sleep_for(10ms);
    std::this_thread::sleep_for(20ms);
    return worker_.reads();
  }

  Table table_{.rows = std::make_shared<HundredRows>()};
  RowReader reader_{catalog::Layout::box()};
  RowCache cache_;
  DoneQueue queue_;
  Worker worker_{reader_, cache_, queue_};
  unsigned found_ = 0;
};

TEST_F(WorkerThatReads, ReadsAheadOfAWalkAndEachRowOnce) {
  EXPECT_EQ(next({}).row.key, agent::Key{1});
  EXPECT_EQ(reads(1), 1U) << "not yet a walk";
  EXPECT_EQ(next({1}).row.key, agent::Key{2});
  EXPECT_EQ(reads(4), 4U) << "and rows 3 and 4";
  EXPECT_EQ(next({2}).row.key, agent::Key{3});
  EXPECT_EQ(reads(8), 8U) << "and rows 5 to 8";
  EXPECT_EQ(next({3}).row.key, agent::Key{4});
  EXPECT_EQ(reads(8), 8U);
  for (uint32_t row = 5; row <= 100; ++row) {
    Answer answer = next({row - 1});
    EXPECT_EQ(answer.row.key, agent::Key{row});
    EXPECT_EQ(answer.row.record, Bytes{static_cast<uint8_t>(row)});
  }
  EXPECT_EQ(next({100}).outcome, Outcome::kNone);
  EXPECT_EQ(reads(101), 101U);
  EXPECT_GT(found_, 0u);
}

TEST_F(WorkerThatReads, ReadsNothingAheadOfSingleRequests) {
  for (uint32_t row : {7U, 30U, 52U}) EXPECT_EQ(next({row}).row.key, agent::Key{row + 1});
  EXPECT_EQ(reads(3), 3U);
}

/// What is read ahead must not expire before the manager asks for it.
TEST(WalkOfRows, IsReadAheadOnlyAsFarAsTheManagerIsFast) {
  Walk::Clock::time_point now{1000s};
  Walk walk{.table = nullptr, .last = {}, .begun = now};
  auto batch_after = [&](std::chrono::milliseconds pause) {
    now += pause;
    return walk.begin_batch(now) ? walk.left : 0;
  };
  std::vector<unsigned> batches;
  for (auto pause : {1ms, 1ms, 250ms, 20ms, 20ms, 251ms, 500ms, 500ms, 400ms, 501ms}) {
    batches.push_back(batch_after(pause));
  }
  EXPECT_EQ(batches, (std::vector<unsigned>{2, 4, 8, 16, 16, 8, 4, 2, 1, 0}));
}

}  // namespace

}  // namespace olt::test
