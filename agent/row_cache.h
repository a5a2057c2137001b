/// The rows read last, for all columns of a row and all managers that walk at the same time.
#ifndef OLT_AGENT_ROW_CACHE_H
#define OLT_AGENT_ROW_CACHE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "agent/rows.h"

namespace olt::agent {

struct Walk;

/// For any thread. Failures are not kept; that there is no row is.
class RowCache {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr size_t kRows = 512;
  static constexpr std::chrono::seconds kAge{1};

  struct Found {
    std::shared_ptr<const Answer> answer;
    Clock::time_point read;
    /// The walk that was added with the answer, for the first who finds it: it is to go on.
    std::shared_ptr<Walk> walk;
  };

  std::optional<Found> find(const Table &table, Selection selection, const Key &key,
                            Clock::time_point now = Clock::now());
  void add(const Table &table, Selection selection, const Key &key, const Answer &answer,
           Clock::time_point now = Clock::now(), std::shared_ptr<Walk> walk = nullptr);
  /// Must follow every write, also one of unknown outcome.
  void drop_all();

 private:
  struct Entry {
    const Table *table;
    Selection selection;
    Key key;
    Found found;
    std::array<uint64_t, 2> questions;  ///< hashes; they may be the same

    bool answers(const Table &asked, Selection how, const Key &named) const;
  };

  void forget(uint64_t question, const Entry &entry);

  std::mutex mutex_;
  std::deque<Entry> entries_;                          ///< in the order of time
  std::unordered_map<uint64_t, Entry *> by_question_;  ///< the newest that answers it
};

}  // namespace olt::agent

#endif
