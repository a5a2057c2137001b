#include "box/state/moment.h"

namespace olt::box {

using std::chrono::milliseconds;

uint64_t to_milliseconds(TimePoint time) {
  return static_cast<uint64_t>(std::chrono::floor<milliseconds>(time.time_since_epoch()).count());
}

TimePoint read_time(ObjectReader &reader, std::string_view key) {
  return TimePoint(milliseconds(reader.number(key, kMoments)));
}

}  // namespace olt::box
