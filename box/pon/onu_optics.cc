#include "box/pon/onu_optics.h"

#include <chrono>
#include <cmath>
#include <numbers>

namespace olt::box {

namespace {

constexpr double kSplitterLoss = 16.0;
constexpr double kDownLossPerMetre = 0.000'22;
constexpr double kUpLossPerMetre = 0.000'35;
constexpr double kSentByOlt = 4.0;

/// A value from 0 to 1 that differs between ONUs; each use of it has its own number.
double spread(const OnuPart &onu, uint32_t use) {
  uint32_t mixed = (onu.interface * 1024 + onu.onu + use * 65'537) * 2'654'435'761U;
  mixed ^= mixed >> 15;
  mixed *= 2'246'822'519U;
  return static_cast<double>(mixed >> 16) / 65'536.0;
}

double time_of_day(TimePoint now) {
  std::chrono::duration<double, std::ratio<86'400>> days = now.time_since_epoch();
  return days.count() - std::floor(days.count());
}

}  // namespace

uint32_t fibre_length(const OnuPart &onu) {
  return 500 + static_cast<uint32_t>(19'000 * spread(onu, 0));
}

OpticalReadings read_optics(const OnuPart &onu, TimePoint now) {
  double length = fibre_length(onu);
  double warmth = std::sin(2 * std::numbers::pi * (time_of_day(now) + spread(onu, 1) / 8));
  OpticalReadings readings = {};
  readings.sent = 1.5 + spread(onu, 2) + 0.1 * warmth;
  readings.received = kSentByOlt - kSplitterLoss - spread(onu, 3) - kDownLossPerMetre * length;
  readings.received_by_olt = readings.sent - kSplitterLoss - kUpLossPerMetre * length;
  readings.temperature = 38 + 8 * spread(onu, 4) + 4 * warmth;
  readings.voltage = 3.28 + 0.04 * spread(onu, 5);
  readings.bias = 11 + 4 * spread(onu, 6) + 0.5 * warmth;
  return readings;
}

}  // namespace olt::box
