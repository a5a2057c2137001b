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

/// A manager that asks for one row after the other. Its next rows are read before it asks for them,
/// in batches: when it gets to the first row of one, the next one is read.
struct Walk {
  using Clock = RowCache::Clock;

  static constexpr unsigned kLongestBatch = 16;

  const Table *table;
  Key last;  ///< the row read last
  Clock::time_point begun{};
  unsigned batch = 1;
  unsigned left = 0;       ///< rows of the batch that are to be read
  bool is_marked = false;  ///< a row in the cache calls for the next batch

  /// The next batch is longer or shorter than the one before, so that the manager asks for its rows
  /// while the cache still has them. @return false when it is too slow for that
  bool begin_batch(Clock::time_point now);
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
  /// Reads the next batch of the walk, a row at a time and after all jobs.
  void follow(std::shared_ptr<Walk> walk);
  bool is_idle() const;
  /// The module that its last call asks: tables may be stepped through by another one.
  uint8_t asked_module() const { return asked_module_; }
  /// Rows read from the module.
  uint32_t reads() const { return reads_; }

 private:
  void run();
  void perform(Job &job);
  void perform(Task &task);
  Answer read(const Table &table, Selection selection, const Key &key,
              const std::shared_ptr<Walk> &walk = nullptr);
  /// Reads one row. @return whether the batch goes on
  bool read_ahead(const std::shared_ptr<Walk> &walk);

  const RowReader &reader_;
  RowCache &cache_;
  DoneQueue &done_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::shared_ptr<Job>> jobs_;
  std::deque<std::shared_ptr<Walk>> walks_;
  bool is_busy_ = false;
  bool is_ending_ = false;
  std::atomic<uint32_t> reads_{0};
  std::atomic<uint8_t> asked_module_{0};
  std::thread thread_;
};

}  // namespace olt::agent

#endif
