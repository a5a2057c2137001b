#include "agent/worker.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>
#include <memory>

#include "agent/objects.h"
#include "catalog/layout.h"
#include "tests/support/folder.h"

namespace olt::test {

namespace {

using agent::Answer;
using agent::DoneQueue;
using agent::Job;
using agent::Outcome;
using agent::RowCache;
using agent::RowReader;
using agent::Selection;
using agent::Table;
using agent::Worker;

std::shared_ptr<Job> done(DoneQueue &queue) {
  pollfd readable = {.fd = queue.descriptor(), .events = POLLIN, .revents = 0};
  EXPECT_EQ(poll(&readable, 1, 10'000), 1);
  return queue.take().front();
}

TEST(Worker, SaysWhichAnswersAreOfTheModule) {
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
  for (agent::Task &task : job->tasks) task = {.table = &tables[0], .key = {0}};
  job->tasks[1].is_fresh = true;
  job->tasks[2].selection = Selection::kNext;
  worker.submit(job);
  ASSERT_EQ(done(queue), job);
  EXPECT_EQ(job->tasks[0].answer.outcome, Outcome::kFound);
  EXPECT_FALSE(job->tasks[0].was_called);
  EXPECT_TRUE(job->tasks[1].answer.is_lost());
  EXPECT_TRUE(job->tasks[1].was_called);
  EXPECT_EQ(job->tasks[2].answer.outcome, Outcome::kNone);
  EXPECT_FALSE(job->tasks[2].answer.is_of_module());
}

}  // namespace

}  // namespace olt::test
