/// Listings of PON interfaces, of ONUs and of their parts.
#ifndef OLT_BOX_PON_ONU_LISTING_H
#define OLT_BOX_PON_ONU_LISTING_H

#include <cstdint>
#include <functional>
#include <string_view>

#include "box/core/hardware.h"
#include "box/pon/onu_state.h"

namespace olt::box {

/// Adds its sections to the report, or says why it cannot.
using PartReporter = std::function<Status(const OnuPart &, Report &)>;

/// A message that lists something of what its target names; the name of the listing is at the start
/// of the reply. Title and name of the part head the listing.
Message listing_message(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                        Scope scope, std::string_view kind, std::string_view title,
                        PartReporter fill);

/// A message that lists something of a PON interface.
Message interface_listing(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                          std::string_view kind, std::function<Report(uint32_t interface)> report);

}  // namespace olt::box

#endif
