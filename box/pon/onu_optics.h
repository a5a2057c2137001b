/// Distances and optical readings of the simulated ONUs.
#ifndef OLT_BOX_PON_ONU_OPTICS_H
#define OLT_BOX_PON_ONU_OPTICS_H

#include <cstdint>

#include "base/clock.h"
#include "box/pon/onu_record.h"

namespace olt::box {

/// Length of the fibre to the ONU in metres, fixed for each ONU.
uint32_t fibre_length(const OnuPart &onu);

/// Powers in dBm.
struct OpticalReadings {
  double sent;             ///< by the ONU
  double received;         ///< by the ONU
  double received_by_olt;  ///< from the ONU
  double temperature;      ///< in degrees Celsius
  double voltage;
  double bias;  ///< of the laser, in mA
};

/// Readings differ between ONUs and change slowly over the day.
OpticalReadings read_optics(const OnuPart &onu, TimePoint now);

}  // namespace olt::box

#endif
