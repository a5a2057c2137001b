// What the OLT knows about its ONUs and their logical links. Each ONU has one logical link (LLID).

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "base/clock.h"
#include "base/mac.h"
#include "base/text.h"
#include "box/pon/families.h"
#include "box/pon/onu_listing.h"
#include "box/pon/onu_optics.h"

namespace olt::box {

namespace {

/// In nanoseconds, at 5 ns per metre in each direction.
constexpr uint32_t kRoundTripPerMetre = 10;

std::string since_start(TimePoint start, TimePoint now) {
  auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(now - start).count();
  return fmt::to_string(std::max<decltype(elapsed)>(elapsed, 0));
}

class PonInventory final : public Family {
 public:
  PonInventory(Hardware &hardware, OnuState &state) : hardware_(hardware), state_(state) {}

  std::string_view name() const override { return "pon-inventory"; }

  std::vector<Message> messages() override {
    return {
        interface_listing(hardware_, state_, 35, "onus", "onulist",
                          std::bind_front(&PonInventory::list_onus, this)),
        interface_listing(hardware_, state_, 36, "links", "linklist",
                          std::bind_front(&PonInventory::list_links, this)),
        onu_listing(47, "onu-info", "onuinfo", "Basic information of ONU",
                    &PonInventory::show_basics),
        onu_listing(48, "onu-config", "onuconfig", "Running configuration of ONU",
                    &PonInventory::show_configuration),
        part_message(state_, 65, "onu-mac", Scope::kOnu, exactly(0),
                     on(this, &PonInventory::read_mac)),
        onu_listing(106, "onu-optics", "optical", "Optical readings of ONU",
                    &PonInventory::show_optics),
    };
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Message onu_listing(uint32_t type, std::string_view name, std::string_view kind,
                      std::string_view title, Status (PonInventory::*show)(const Onu &, Report &)) {
    return listing_message(hardware_, state_, type, name, Scope::kOnu, kind, title,
                           [this, show](const OnuPart &place, Report &report) {
                             return (this->*show)(*state_.find(place), report);
                           });
  }

  /// When the ONU entered its state.
  std::string since(const Onu &onu) const {
    bool away = onu.presence(hardware_.now()) == Presence::kAway;
    return utc_seconds(away ? onu.from() - state_.topology.onu_restart : onu.from());
  }

  std::string description(const Onu &onu) const {
    const RecordTable &table = state_.records.description;
    std::string text = table.show(table.at(onu.place()));
    return text.empty() ? "-" : text;
  }

  Report list_onus(uint32_t interface) const {
    TimePoint now = hardware_.now();
    auto onus = state_.of_interface(interface);
    auto count =
        std::count_if(onus.begin(), onus.end(), [now](const Onu &onu) { return onu.up(now); });
    Report report("ONUs of PON interface " + pon_name(interface));
    report.section(fmt::format("{}, {} up", counted(onus.size(), "ONU"), count),
                   {"ONU", "MAC address", "LOID", "State", "Since", "Description"});
    for (const Onu &onu : onus) {
      report.row({to_text(onu.place()), mac_text(onu.mac()), onu.loid(),
                  presence_name(onu.presence(now)), since(onu), description(onu)});
    }
    return report;
  }

  /// The granted maximum of the logical link; the capacity of the PON if none was requested.
  uint32_t bandwidth(const Onu &onu) const {
    auto record = Request(state_.records.link_dba.at(onu.place())).record<LinkDba>();
    return record.granted[1] == 0 ? kMaxBandwidth : record.granted[1];
  }

  Report list_links(uint32_t interface) const {
    TimePoint now = hardware_.now();
    Report report("Logical links of PON interface " + pon_name(interface));
    report.section(
        "Logical links (LLIDs) of the ONUs that are up",
        {"ONU", "Distance in m", "Round trip in ns", "Bandwidth in kbit/s", "Up for in s"});
    for (const Onu &onu : state_.of_interface(interface)) {
      if (!onu.up(now)) continue;
      uint32_t length = fibre_length(onu.place());
      report.row({to_text(onu.place()), fmt::to_string(length),
                  fmt::to_string(length * kRoundTripPerMetre), fmt::to_string(bandwidth(onu)),
                  since_start(onu.from(), now)});
    }
    return report;
  }

  Status show_basics(const Onu &onu, Report &report) {
    const Topology &topology = state_.topology;
    report.section("Identity");
    report.row({"MAC address", mac_text(onu.mac())});
    report.row({"LOID", onu.loid()});
    report.row({"Description", description(onu)});
    report.section("State");
    report.row({"State", presence_name(onu.presence(hardware_.now()))});
    report.row({"Since", since(onu)});
    report.row({"Distance in m", fmt::to_string(fibre_length(onu.place()))});
    report.section("Hardware");
    report.row({"UNI ports", fmt::to_string(topology.uni_ports_per_onu)});
    report.row({"Voice lines", fmt::to_string(topology.voice_lines_per_onu)});
    report.row({"WAN connections", fmt::to_string(kWanConnectionsPerOnu)});
    return Status::kOk;
  }

  Status show_configuration(const Onu &onu, Report &report) {
    bool any = false;
    for (const auto &[group, table] : state_.records.entries()) {
      auto kept = table.kept_of(onu.place());
      if (kept.empty()) continue;
      any = true;
      report.section(std::string(table.title()));
      for (const auto &[place, record] : kept) report.row({to_text(place), table.show(record)});
    }
    if (!any) report.section("No setting differs from the factory's.");
    return Status::kOk;
  }

  Status read_mac(const OnuPart &place, const Request &request, Reply &reply) {
    const Onu &onu = *state_.find(place);
    auto target = request.record<OntTarget>();
    set_bytes(target.mac, onu.mac());
    target.mac_word = onu.up(hardware_.now()) ? 1 : 0;
    reply.record(target);
    return Status::kOk;
  }

  Status show_optics(const Onu &onu, Report &report) {
    TimePoint now = hardware_.now();
    if (!onu.up(now)) return Status::kOffline;
    OpticalReadings readings = read_optics(onu.place(), now);
    report.section("Powers in dBm");
    report.row({"Sent", fmt::format("{:.2f}", readings.sent)});
    report.row({"Received", fmt::format("{:.2f}", readings.received)});
    report.row({"Received by the OLT", fmt::format("{:.2f}", readings.received_by_olt)});
    report.section("Module");
    report.row({"Temperature in degrees C", fmt::format("{:.1f}", readings.temperature)});
    report.row({"Voltage in V", fmt::format("{:.2f}", readings.voltage)});
    report.row({"Laser bias in mA", fmt::format("{:.1f}", readings.bias)});
    return Status::kOk;
  }

  Hardware &hardware_;
  OnuState &state_;
};

}  // namespace

std::unique_ptr<Family> make_pon_inventory(Hardware &hardware, OnuState &state) {
  return std::make_unique<PonInventory>(hardware, state);
}

}  // namespace olt::box
