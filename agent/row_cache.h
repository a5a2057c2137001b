/// The rows read last, for all columns of a row and all managers that walk at the same time.
#ifndef OLT_AGENT_ROW_CACHE_H
#define OLT_AGENT_ROW_CACHE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

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
    const Table *table = nullptr;
    Selection selection{};
    Key key;
    Found found;
    uint64_t hash = 0;      ///< of the key
    uint64_t row_hash = 0;  ///< of the key of the row

    bool answers(const Table &asked, Selection how, const Key &named, uint64_t named_hash) const;
  };

  std::mutex mutex_;
  std::vector<Entry> entries_;  ///< a ring in the order of time
  size_t end_ = 0;              ///< of the newest entry
};

}  // namespace olt::agent

#endif
