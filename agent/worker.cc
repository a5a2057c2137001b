#include "agent/worker.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <utility>

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

bool Worker::is_idle() const {
  std::lock_guard guard(mutex_);
  return !is_busy_ && jobs_.empty();
}

void Worker::run() {
  std::unique_lock guard(mutex_);
  while (true) {
    changed_.wait(guard, [this] { return is_ending_ || !jobs_.empty(); });
    if (is_ending_) return;
    std::shared_ptr<Job> job = std::move(jobs_.front());
    jobs_.pop_front();
    is_busy_ = true;
    guard.unlock();
    for (Task &task : job->tasks) {
      if (!job->is_abandoned) perform(task);
    }
    done_.add(std::move(job));
    guard.lock();
    is_busy_ = false;
  }
}

void Worker::perform(Task &task) {
  if (task.column != nullptr) {
    task.was_called = true;
    task.answer = reader_.write(*task.table, *task.column, task.key, task.bytes);
    cache_.drop_all();
    return;
  }
  if (!task.is_fresh) {
    if (auto known = cache_.find(*task.table, task.selection, task.key)) {
      task.answer = std::move(*known);
      return;
    }
  }
  task.was_called = true;
  task.answer = reader_.read(*task.table, task.selection, task.key);
  ++reads_;
  cache_.add(*task.table, task.selection, task.key, task.answer);
}

}  // namespace olt::agent
