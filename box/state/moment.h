/// Points in time in state files.
#ifndef OLT_BOX_STATE_MOMENT_H
#define OLT_BOX_STATE_MOMENT_H

#include <cstdint>
#include <string_view>

#include "base/clock.h"
#include "box/state/json.h"

namespace olt::box {

/// In milliseconds since 1970. Reading throws BadInput.
inline constexpr NumberRange kMoments = {0, uint64_t{UINT32_MAX} * 1000};

uint64_t to_milliseconds(TimePoint time);
TimePoint read_time(ObjectReader &reader, std::string_view key);

}  // namespace olt::box

#endif
