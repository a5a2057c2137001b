// Multicast at the UNI ports of ONUs, and the groups that these have joined.

#include <fmt/format.h>

#include <algorithm>

#include "base/clock.h"
#include "base/text.h"
#include "box/message/id_set.h"
#include "box/pon/families.h"
#include "box/pon/onu_listing.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

constexpr size_t kMaxVlans = std::size(MulticastVlans().vlans);
constexpr uint32_t kMaxGroups = 4;  ///< that a port joins
constexpr seconds kBetweenGroups{5};

/// How many groups a port joins; the same in every run.
uint32_t wanted_groups(const OnuPart &port) {
  return (port.interface + 3 * port.onu + 5 * port.part) % (kMaxGroups + 1);
}

class PonMulticast final : public OnuFamily {
 public:
  PonMulticast(Hardware &hardware, OnuState &state)
      : OnuFamily("pon-multicast", state,
                  {state.records.multicast_group_limit, state.records.multicast_vlans,
                   state.records.multicast_strip, state.records.fast_leave}),
        hardware_(hardware) {}

  std::vector<Message> messages() override {
    OnuRecords &records = state().records;
    return {
        read_message(state(), 120, "multicast-group-limit", records.multicast_group_limit),
        set_message(state(), 121, "set-multicast-group-limit", records.multicast_group_limit),
        listing_message(hardware_, state(), 122, "uni-port-multicast-vlans", Scope::kUniPort,
                        "multicastvlan", "Multicast VLANs of UNI port",
                        on(this, &PonMulticast::show_vlans)),
        part_message(state(), 123, "clear-uni-port-multicast-vlans", Scope::kUniPort, exactly(0),
                     on(this, &PonMulticast::clear_vlans)),
        vlans_message(124, "add-uni-port-multicast-vlans", &PonMulticast::add),
        vlans_message(125, "delete-uni-port-multicast-vlans", &PonMulticast::remove),
        listing_message(hardware_, state(), 126, "uni-port-multicast-strip", Scope::kUniPort,
                        "multicaststrip", "Stripping of multicast tags at UNI port",
                        on(this, &PonMulticast::show_strip)),
        set_message(state(), 127, "set-uni-port-multicast-strip", records.multicast_strip),
        listing_message(hardware_, state(), 148, "multicast-groups", Scope::kOnu, "multicastgroup",
                        "Multicast groups of ONU", on(this, &PonMulticast::show_groups)),
        set_message(state(), 154, "set-fast-leave", records.fast_leave),
    };
  }

 private:
  using Vlans = std::vector<uint16_t>;

  /// A message with VLAN ids after the target.
  Message vlans_message(uint32_t type, std::string_view name,
                        Status (PonMulticast::*act)(const OnuPart &, const Vlans &)) {
    auto handler = [this, act](const OnuPart &port, const Request &request, Reply &) {
      Vlans vlans = request.records<uint16_t>(sizeof(OntTarget));
      bool valid = std::all_of(vlans.begin(), vlans.end(),
                               [](uint16_t vlan) { return vlan >= 1 && vlan <= kLastVlan; });
      return valid ? (this->*act)(port, vlans) : Status::kBadValue;
    };
    return part_message(state(), type, name, Scope::kUniPort, {0, sizeof(uint16_t) * kLastVlan},
                        handler);
  }

  Vlans vlans_of(const OnuPart &port) const {
    return counted_ids(state().records.multicast_vlans.at(port));
  }

  void keep(const OnuPart &port, const Vlans &vlans) {
    MulticastVlans record = {.count = static_cast<uint8_t>(vlans.size())};
    for (size_t i = 0; i < vlans.size(); ++i) record.vlans[i] = vlans[i];
    state().records.multicast_vlans.set(port, bytes_of(record));
  }

  Status clear_vlans(const OnuPart &port) {
    state().records.multicast_vlans.erase(port);
    return Status::kOk;
  }

  Status add(const OnuPart &port, const Vlans &added) {
    IdSet ids;
    for (uint16_t vlan : vlans_of(port)) ids.set(vlan);
    for (uint16_t vlan : added) ids.set(vlan);
    if (ids.count() > kMaxVlans) return Status::kFull;
    keep(port, in_order(ids));
    return Status::kOk;
  }

  Status remove(const OnuPart &port, const Vlans &removed) {
    IdSet known;
    for (uint16_t vlan : vlans_of(port)) known.set(vlan);
    IdSet left = known;
    for (uint16_t vlan : removed) {
      if (!known.test(vlan)) return Status::kNotFound;
      left.reset(vlan);
    }
    keep(port, in_order(left));
    return Status::kOk;
  }

  static Vlans in_order(const IdSet &ids) {
    Vlans vlans;
    for (IdRange range : ranges_of(ids)) {
      for (uint32_t vlan = range.first; vlan <= range.last; ++vlan) {
        vlans.push_back(static_cast<uint16_t>(vlan));
      }
    }
    return vlans;
  }

  Status show_vlans(const OnuPart &port, Report &report) const {
    Vlans vlans = vlans_of(port);
    report.section(counted(vlans.size(), "VLAN"));
    for (uint16_t vlan : vlans) report.row({fmt::to_string(vlan)});
    return Status::kOk;
  }

  Status show_strip(const OnuPart &port, Report &report) const {
    report.section("Record");
    report.dump(state().records.multicast_strip.at(port));
    return Status::kOk;
  }

  /// Once the ONU is up, each port joins its groups one by one.
  Status show_groups(const OnuPart &place, Report &report) const {
    const Onu &onu = *state().find(place);
    TimePoint now = hardware_.now();
    if (!onu.up(now)) return Status::kOffline;
    report.section("Groups", {"Port", "Group", "VLAN", "Joined at"});
    for (uint32_t part = 1; part <= state().parts(Scope::kUniPort); ++part) {
      OnuPart port = {place.interface, place.onu, part};
      Vlans vlans = vlans_of(port);
      uint32_t limit = Request(state().records.multicast_group_limit.at(port)).word();
      uint32_t groups = wanted_groups(port);
      if (limit != 0) groups = std::min(groups, limit);
      for (uint32_t group = 1; group <= groups; ++group) {
        TimePoint joined = onu.from() + group * kBetweenGroups;
        if (joined > now) break;
        report.row({to_text(port), fmt::format("239.{}.{}.{}", port.interface, part, group),
                    vlans.empty() ? "-" : fmt::to_string(vlans[(group - 1) % vlans.size()]),
                    utc_seconds(joined)});
      }
    }
    return Status::kOk;
  }

  Hardware &hardware_;
};

}  // namespace

std::unique_ptr<Family> make_pon_multicast(Hardware &hardware, OnuState &state) {
  return std::make_unique<PonMulticast>(hardware, state);
}

}  // namespace olt::box
