/// Finds what managers are notified of: reads one row after the other, again and again, and
/// compares each with what it was. Of modules without such rows it asks for something, too, so that
/// their loss is noticed.
#ifndef OLT_AGENT_POLLER_H
#define OLT_AGENT_POLLER_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "agent/objects.h"
#include "agent/rows.h"
#include "agent/worker.h"
#include "catalog/layout.h"

namespace olt::agent {

struct Change {
  Event event;
  const Table *table;
  size_t column;
  Row row;
};

/// The first round is what later ones are compared with.
class Poller {
 public:
  using Clock = std::chrono::steady_clock;

  /// At most one exchange in that time.
  Poller(const std::vector<Table> &tables, const catalog::Layout &layout,
         std::chrono::milliseconds pace);

  /// What to read now; nothing when it is too early, or while an answer is out.
  std::optional<Task> next(Clock::time_point now);
  /// Must follow each task, with its answer. A failure says nothing of the row.
  std::optional<Change> take(const Task &task);

  /// The modules may have started anew, so that their times say nothing.
  void forget_times();

 private:
  struct State {
    int64_t value;
    int64_t seconds;  ///< that it has lasted; 0: not known
    Clock::time_point read;
  };

  /// A table that is watched; without events, only for the answers of its module.
  struct Cursor {
    const Table *table = nullptr;
    size_t column = 0;
    std::optional<size_t> seconds;    ///< the column that says how long the value has lasted
    std::map<int64_t, Event> events;  ///< by the value that a row has taken

    bool is_compared = false;  ///< it has been read once
    Key at{};
    std::map<Key, State> known{};
  };

  void watch(const std::vector<Table> &tables, const char *column, const char *seconds,
             const std::map<int64_t, Event> &events, unsigned share);
  void watch_other_modules(const std::vector<Table> &tables);
  std::optional<Change> compare(Cursor &cursor, const Row &row);

  std::vector<Cursor> cursors_;
  std::vector<size_t> turns_;  ///< places in cursors_
  size_t turn_ = 0;
  bool is_waiting_ = false;
  std::chrono::milliseconds pace_;
  Clock::time_point last_{};
};

}  // namespace olt::agent

#endif
