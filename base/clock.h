/// Points in time, and clocks that tests can set.
#ifndef OLT_BASE_CLOCK_H
#define OLT_BASE_CLOCK_H

#include <chrono>
#include <functional>
#include <string>

namespace olt {

using TimePoint = std::chrono::system_clock::time_point;
using Clock = std::function<TimePoint()>;

/// "2026-01-31T23:59:59Z".
std::string utc_seconds(TimePoint time);
/// "2026-01-31T23:59:59.123456Z".
std::string utc_microseconds(TimePoint time);

}  // namespace olt

#endif
