// Traffic counters of the ports. A link that is up carries a constant load, so the counters follow
// from the time for which it has been up.

#include <fmt/format.h>

#include "base/clock.h"
#include "base/text.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

constexpr uint64_t kOctetsPerFrame = 625;

struct Traffic {
  uint64_t octets;
  uint64_t frames;
  uint64_t multicasts;
  uint64_t broadcasts;

  uint64_t unicasts() const { return frames - multicasts - broadcasts; }
};

Traffic traffic_of(uint64_t octets) {
  uint64_t frames = octets / kOctetsPerFrame;
  return {octets, frames, frames * 8 / 100, frames * 2 / 100};
}

/// About one per cent of the link's capacity, slightly more for higher port numbers.
uint64_t octets_received(const EthernetPort &port, TimePoint now) {
  auto elapsed = static_cast<uint64_t>(port.counted(now).count());
  uint64_t full_load = elapsed * port.hardware().speed * 125;
  return full_load / 100 * (10 + port.number()) / 10;
}

class SwitchStatistics final : public Family {
 public:
  SwitchStatistics(Hardware &hardware, SwitchState &state) : hardware_(hardware), state_(state) {}

  std::string_view name() const override { return "switch-statistics"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 29, "statistics", exactly(sizeof(ListingRequest)),
         on(this, &SwitchStatistics::list)},
        {kMainModule, 30, "clear-statistics", exactly(sizeof(PortRecord)),
         on(this, &SwitchStatistics::clear)},
    };
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status list(const Request &request, Reply &reply) {
    auto asked = request.record<ListingRequest>();
    const EthernetPort *port = state_.find(asked.slot, asked.number);
    if (port == nullptr) return Status::kNotFound;
    TimePoint now = hardware_.now();
    Traffic in = traffic_of(octets_received(*port, now));
    Traffic out = traffic_of(in.octets * 3 / 5);

    Report report("Statistics of port " + port->name());
    report.section("Link");
    report.row({"State", port->link_up(now) ? "up" : "down"});
    report.row({"Seconds counted", fmt::to_string(port->counted(now).count() / 1000)});
    report.section("Counters", {"Counter", "Received", "Sent"});
    auto row = [&report](const char *counter, uint64_t received, uint64_t sent) {
      report.row({counter, fmt::to_string(received), fmt::to_string(sent)});
    };
    row("Octets", in.octets, out.octets);
    row("Frames", in.frames, out.frames);
    row("Unicast frames", in.unicasts(), out.unicasts());
    row("Multicast frames", in.multicasts, out.multicasts);
    row("Broadcast frames", in.broadcasts, out.broadcasts);
    row("Discarded frames", 0, 0);
    row("Frames with errors", 0, 0);
    return hardware_.list_behind_header("statistics", report.text(), reply);
  }

  Status clear(const Request &request) {
    auto record = request.record<PortRecord>();
    EthernetPort *port = state_.find(record.slot, record.port);
    if (port == nullptr) return Status::kNotFound;
    port->clear_counters(hardware_.now());
    return Status::kOk;
  }

  Hardware &hardware_;
  SwitchState &state_;
};

}  // namespace

std::unique_ptr<Family> make_switch_statistics(Hardware &hardware, SwitchState &state) {
  return std::make_unique<SwitchStatistics>(hardware, state);
}

}  // namespace olt::box
