/// The latest events of the box, for the log listing.
#ifndef OLT_BOX_WATCH_EVENT_LOG_H
#define OLT_BOX_WATCH_EVENT_LOG_H

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "box/state/archive.h"

namespace olt::box {

/// Severity levels of syslog; 0 is the most severe.
enum class Level : uint8_t {
  kEmergency,
  kAlert,
  kCritical,
  kError,
  kWarning,
  kNotice,
  kInformational,
  kDebug
};

std::string_view level_name(Level level);

struct Event {
  TimePoint time;
  Level level;
  uint32_t module;
  std::string text;
};

class EventLog {
 public:
  explicit EventLog(const Clock &clock) : clock_(clock) {}

  /// Drops the oldest event when the log is full.
  void record(Level level, uint32_t module, std::string_view text);
  /// Oldest first.
  const std::deque<Event> &events() const { return events_; }

  void describe(Archive &archive);

 private:
  const Clock &clock_;
  std::deque<Event> events_;
};

}  // namespace olt::box

#endif
