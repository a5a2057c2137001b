/// Calls that block, on threads of their own: one for each management module.
#ifndef OLT_AGENT_WORKER_H
#define OLT_AGENT_WORKER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "agent/row_cache.h"
#include "agent/rows.h"
#include "base/descriptor.h"

namespace olt::agent {

/// A row to be read, or a value to be written.
struct Task {
  const Table *table = nullptr;
  const Column *column = nullptr;  ///< to be written; null: the row is read
  Selection selection{};
  Key key;
  Bytes bytes;              ///< to be written
  bool is_fresh = false;    ///< read from the module even if the cache has it
  bool was_called = false;  ///< the module, for the answer
  Answer answer{};
};

/// Tasks that are answered together. Whoever submits one does not touch it until it is done.
struct Job {
  Job() = default;
  Job(const Job &) = delete;
  Job &operator=(const Job &) = delete;
  virtual ~Job() = default;

  std::vector<Task> tasks;
  /// The deadline has passed: tasks that have not begun are left out.
  std::atomic<bool> is_abandoned{false};
};

/// Where workers put what they have done.
class DoneQueue {
 public:
  DoneQueue();

  /// Readable while the queue is not empty.
  int descriptor() const { return event_.get(); }

  void add(std::shared_ptr<Job> job);
  std::deque<std::shared_ptr<Job>> take();

 private:
  std::mutex mutex_;
  std::deque<std::shared_ptr<Job>> jobs_;
  Descriptor event_;
};

class Worker {
 public:
  Worker(const RowReader &reader, RowCache &cache, DoneQueue &done);
  Worker(const Worker &) = delete;
  Worker &operator=(const Worker &) = delete;
  /// Waits for the call that it is in.
  ~Worker();

  void submit(std::shared_ptr<Job> job);
  bool is_idle() const;
  /// Rows read from the module.
  uint32_t reads() const { return reads_; }

 private:
  void run();
  void perform(Task &task);

  const RowReader &reader_;
  RowCache &cache_;
  DoneQueue &done_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<Job>> jobs_;
  bool is_busy_ = false;
  bool is_ending_ = false;
  std::atomic<uint32_t> reads_{0};
  std::thread thread_;
};

}  // namespace olt::agent

#endif
