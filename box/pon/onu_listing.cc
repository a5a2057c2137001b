#include "box/pon/onu_listing.h"

#include <fmt/format.h>

namespace olt::box {

Message listing_message(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                        Scope scope, std::string_view kind, std::string_view title,
                        PartReporter fill) {
  auto act = [&hardware, kind, title, fill = std::move(fill)](
                 const OnuPart &place, const Request & /*request*/, Reply &reply) {
    Report report(fmt::format("{} {}", title, to_text(place)));
    Status status = fill(place, report);
    return status == Status::kOk ? hardware.list_at_start(kind, report.text(), reply) : status;
  };
  return part_message(state, type, name, scope, exactly(0), std::move(act));
}

}  // namespace olt::box
