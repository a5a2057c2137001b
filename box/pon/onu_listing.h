/// Listings of PON interfaces, of ONUs and of their parts.
#ifndef OLT_BOX_PON_ONU_LISTING_H
#define OLT_BOX_PON_ONU_LISTING_H

#include <cstdint>
#include <functional>
#include <string_view>

#include "box/core/hardware.h"
#include "box/pon/onu_state.h"

namespace olt::box {

/// Adds sections to the report; a status other than kOk refuses the request.
using PartReporter = std::function<Status(const OnuPart &, Report &)>;

/// A message that writes a listing about the ONU or part named by its target. The reply begins with
/// the listing's name; the listing begins with the title and the name of the part.
Message listing_message(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                        Scope scope, std::string_view kind, std::string_view title,
                        PartReporter fill);

/// A message that writes a listing about a PON interface.
Message interface_listing(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                          std::string_view kind, std::function<Report(uint32_t interface)> report);

}  // namespace olt::box

#endif
