#include "box/pon/onu_listing.h"

#include <fmt/format.h>

namespace olt::box {

Message listing_message(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                        Scope scope, std::string_view kind, std::string_view title,
                        PartReporter fill) {
  auto act = [&hardware, kind, title, fill = std::move(fill)](const OnuPart &place, const Request &,
                                                              Reply &reply) {
    Report report(fmt::format("{} {}", title, to_text(place)));
    Status status = fill(place, report);
    return status == Status::kOk ? hardware.list_at_start(kind, report.text(), reply) : status;
  };
  return part_message(state, type, name, scope, exactly(0), std::move(act));
}

Message interface_listing(Hardware &hardware, OnuState &state, uint32_t type, std::string_view name,
                          std::string_view kind, std::function<Report(uint32_t interface)> report) {
  auto list = [&hardware, &state, kind, report = std::move(report)](const Request &request,
                                                                    Reply &reply) {
    auto asked = request.record<ListingRequest>();
    if (!state.has_interface(asked.slot, asked.number)) return Status::kNotFound;
    return hardware.list_behind_header(kind, report(asked.number).text(), reply);
  };
  return {kMainModule, type, name, exactly(sizeof(ListingRequest)), list};
}

}  // namespace olt::box
