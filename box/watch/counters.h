/// Counts exchanges, in all and for each message.
#ifndef OLT_BOX_WATCH_COUNTERS_H
#define OLT_BOX_WATCH_COUNTERS_H

#include <cstdint>
#include <map>
#include <utility>

#include "box/state/archive.h"

namespace olt::box {

struct MessageCounts {
  uint64_t exchanges = 0;
  uint64_t refused = 0;  ///< answered with a status other than 0 by the module
  uint64_t unserved = 0;
  uint64_t bad_lengths = 0;
  uint64_t faults = 0;
};

class Counters {
 public:
  /// Adds to the totals and to the counts of the message. A flood of different unserved messages
  /// is counted in the totals alone.
  void add(uint32_t module, uint32_t type, const MessageCounts &counts);

  void describe(Archive &archive);

 private:
  using Key = std::pair<uint32_t, uint32_t>;  ///< module, type

  MessageCounts total_;
  std::map<Key, MessageCounts> messages_;
};

}  // namespace olt::box

#endif
