#include "agent/worker.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include "agent/call.h"
#include "base/failure.h"

namespace olt::agent {

DoneQueue::DoneQueue()
    : event_(above_standard_streams(Descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)))) {
  if (!event_.is_open()) throw system_failure("oltsnmp: eventfd", errno);
}

void DoneQueue::add(std::shared_ptr<Job> job) {
  std::lock_guard guard(mutex_);
  jobs_.push_back(std::move(job));
  eventfd_write(event_.get(), 1);
}

std::deque<std::shared_ptr<Job>> DoneQueue::take() {
  std::lock_guard guard(mutex_);
  eventfd_t count = 0;
  eventfd_read(event_.get(), &count);
  return std::exchange(jobs_, {});
}

Worker::Worker(const RowReader &reader, RowCache &cache, DoneQueue &done)
    : reader_(reader), cache_(cache), done_(done), thread_([this] { run(); }) {}

Worker::~Worker() {
  {
    std::lock_guard guard(mutex_);
    is_ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void Worker::submit(std::shared_ptr<Job> job) {
  {
    std::lock_guard guard(mutex_);
    jobs_.push_back(std::move(job));
  }
  changed_.notify_one();
}

void Worker::follow(std::shared_ptr<Walk> walk) {
  {
    std::lock_guard guard(mutex_);
    walks_.push_back(std::move(walk));
  }
  changed_.notify_one();
}

bool Worker::is_idle() const {
  std::lock_guard guard(mutex_);
  return !is_busy_ && jobs_.empty();
}

void Worker::run() {
  Call::asked_module = &asked_module_;
  std::unique_lock guard(mutex_);
  while (true) {
    changed_.wait(guard, [this] { return is_ending_ || !jobs_.empty() || !walks_.empty(); });
    if (is_ending_) return;
    is_busy_ = true;
    if (!jobs_.empty()) {
      std::shared_ptr<Job> job = std::move(jobs_.front());
      jobs_.pop_front();
      guard.unlock();
      perform(*job);
      done_.add(std::move(job));
      guard.lock();
    } else {
      std::shared_ptr<Walk> walk = walks_.front();
      guard.unlock();
      bool goes_on = read_ahead(walk);
      guard.lock();
      if (!goes_on) walks_.pop_front();
    }
    is_busy_ = false;
  }
}

void Worker::perform(Job &job) {
  for (Task &task : job.tasks) {
    if (!job.is_abandoned) perform(task);
  }
}

void Worker::perform(Task &task) {
  const Table &table = *task.table;
  if (task.column != nullptr) {
    task.was_called = true;
    task.answer = reader_.write(table, *task.column, task.key, task.bytes);
    cache_.drop_all();
    return;
  }
  std::optional<RowCache::Found> before;
  if (!task.is_fresh) {
    if (auto known = cache_.find(table, task.selection, task.key)) {
      if (known->walk != nullptr) follow(std::move(known->walk));
      task.answer = *known->answer;
      return;
    }
    if (task.selection == Selection::kNext) before = cache_.find(table, Selection::kThis, task.key);
  }
  task.was_called = true;
  task.answer = read(table, task.selection, task.key);
  if (before && task.answer.outcome == Outcome::kFound) {
    follow(std::make_shared<Walk>(
        Walk{.table = &table, .last = task.answer.row.key, .begun = before->read}));
  }
}

Answer Worker::read(const Table &table, Selection selection, const Key &key,
                    const std::shared_ptr<Walk> &walk) {
  Answer answer = reader_.read(table, selection, key);
  ++reads_;
  cache_.add(table, selection, key, answer, RowCache::Clock::now(), walk);
  return answer;
}

bool Worker::read_ahead(const std::shared_ptr<Walk> &walk) {
  if (walk->left == 0 && !walk->begin_batch(Walk::Clock::now())) return false;
  Answer answer;
  if (auto known = cache_.find(*walk->table, Selection::kNext, walk->last)) {
    answer = *known->answer;  // by another walk
  } else {
    answer = read(*walk->table, Selection::kNext, walk->last, walk->is_marked ? nullptr : walk);
    walk->is_marked = true;
  }
  if (answer.outcome != Outcome::kFound) {
    walk->left = 0;
    return false;
  }
  walk->last = std::move(answer.row.key);
  return --walk->left > 0;
}

bool Walk::begin_batch(Clock::time_point now) {
  auto took = now - std::exchange(begun, now);
  if (took > RowCache::kAge / 2.0) return false;
  batch =
      took > RowCache::kAge / 4.0 ? std::max(batch / 2, 1U) : std::min(batch * 2, kLongestBatch);
  left = batch;
  is_marked = false;
  return true;
}

}  // namespace olt::agent
