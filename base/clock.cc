#include "base/clock.h"

#include <fmt/core.h>

#include <ctime>

namespace olt {

std::string utc_seconds(TimePoint time) {
  time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
  tm parts = {};
  gmtime_r(&seconds, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + 1900, parts.tm_mon + 1,
                     parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string utc_microseconds(TimePoint time) {
  auto fraction = time - std::chrono::floor<std::chrono::seconds>(time);
  std::string text = utc_seconds(time);
  text.pop_back();
  return fmt::format("{}.{:06}Z", text,
                     std::chrono::duration_cast<std::chrono::microseconds>(fraction).count());
}

}  // namespace olt
