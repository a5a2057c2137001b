// The MAC addresses of the ports: static ones, and those learned from simulated stations.

#include "base/mac.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "base/clock.h"
#include "box/switch/families.h"

namespace olt::box {

namespace {

using std::chrono::seconds;

enum PortMacOp : uint16_t { kAdd = 1, kDelete = 2 };
constexpr size_t kMaxStatic = 256;

constexpr seconds kAgeing{300};

struct Address {
  uint16_t vlan;
  Mac mac;

  bool operator==(const Address &) const = default;
};

struct StaticAddress {
  uint32_t port;
  Address address;
};

Mac station_mac(uint32_t port, uint32_t station) {
  return {0x02, 0x10, static_cast<uint8_t>(port), 0, 0, static_cast<uint8_t>(station + 1)};
}

/// A station first sends some seconds after the link has come up, and then periodically; every
/// fourth one so rarely that its address ages out in between.
/// @return when it last sent; nothing if it has not sent yet.
std::optional<TimePoint> last_frame(uint32_t station, TimePoint link_from, TimePoint now) {
  TimePoint first = link_from + seconds(2 + 3 * station);
  if (first > now) return std::nullopt;
  seconds period(station % 4 == 3 ? 420 : 60);
  return first + (now - first) / period * period;
}

class SwitchMac final : public Family {
 public:
  SwitchMac(Hardware &hardware, SwitchState &state)
      : hardware_(hardware), state_(state), forgotten_(state_.ports.size(), hardware_.now()) {}

  std::string_view name() const override { return "switch-mac"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 31, "dynamic-macs", exactly(sizeof(ListingRequest)),
         on(this, &SwitchMac::list)},
        {kMainModule, 32, "clear-dynamic-macs", exactly(sizeof(PortRecord)),
         on(this, &SwitchMac::clear)},
        {kMainModule, 55, "port-mac", exactly(sizeof(PortMac)), on(this, &SwitchMac::act)},
    };
  }

  void configuration(Archive &archive) override {
    archive.list("static", statics_, kMaxStatic, [&](StaticAddress &fixed) {
      state_.describe_port(archive, fixed.port);
      archive.number("vlan", fixed.address.vlan, {1, kLastVlan});
      archive.bytes("mac", fixed.address.mac);
      if (archive.is_reading() && !is_unicast(fixed.address.mac)) {
        archive.refuse("mac", "the MAC address of one device in hex");
      }
    });
  }

  void restore_factory() override { statics_.clear(); }

  void running(Archive &archive) override {
    state_.describe_ports(archive, [&](EthernetPort &port) {
      archive.moment("forgotten", forgotten_[port.number() - 1]);
    });
  }

  void reboot() override { std::fill(forgotten_.begin(), forgotten_.end(), hardware_.now()); }

  void describe_configuration(Report &report) const override {
    report.section("Static MAC addresses", {"Port", "VLAN", "MAC address"});
    for (const auto &[port, address] : statics_) {
      report.row(
          {state_.ports[port - 1].name(), fmt::to_string(address.vlan), mac_text(address.mac)});
    }
  }

  size_t footprint() const override {
    return sizeof *this + statics_.capacity() * sizeof(StaticAddress) +
           forgotten_.capacity() * sizeof(TimePoint);
  }

 private:
  struct Row {
    Address address;
    std::string age;  ///< "-" for a static one
  };

  Status list(const Request &request, Reply &reply) {
    auto asked = request.record<ListingRequest>();
    const EthernetPort *port = state_.find(asked.slot, asked.number);
    if (port == nullptr) return Status::kNotFound;
    uint32_t vlan = asked.vlan;
    if (vlan > kLastVlan) return Status::kBadValue;
    auto rows = rows_of(*port);
    if (vlan != 0) std::erase_if(rows, [vlan](const Row &row) { return row.address.vlan != vlan; });
    Report report(vlan == 0
                      ? fmt::format("MAC addresses of port {}", port->name())
                      : fmt::format("MAC addresses of port {} in VLAN {}", port->name(), vlan));
    report.section(counted(rows.size(), "address"), {"VLAN", "MAC address", "Type", "Age in s"});
    for (const auto &[address, age] : rows) {
      report.row({fmt::to_string(address.vlan), mac_text(address.mac),
                  age == "-" ? "static" : "dynamic", age});
    }
    return hardware_.list_behind_header("mac", report.text(), reply);
  }

  /// Static and learned addresses, sorted by VLAN and address.
  std::vector<Row> rows_of(const EthernetPort &port) const {
    std::vector<Row> rows;
    for (const auto &[number, address] : statics_) {
      if (number == port.number()) rows.push_back({address, "-"});
    }
    TimePoint now = hardware_.now();
    std::vector<IdRange> vlans = vlans_of(port);
    uint32_t stations = port.link_up(now) && !vlans.empty() ? port.hardware().stations : 0;
    for (uint32_t station = 0; station < stations; ++station) {
      auto frame = last_frame(station, port.link_from(), now);
      bool learned = frame && *frame >= forgotten_[port.number() - 1] && now - *frame < kAgeing;
      Address address = {nth_vlan(vlans, station), station_mac(port.number(), station)};
      if (!learned || find_static(address) != statics_.end()) continue;
      auto age = std::chrono::duration_cast<seconds>(now - *frame);
      rows.push_back({address, fmt::to_string(age.count())});
    }
    std::sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) {
      return std::tie(a.address.vlan, a.address.mac) < std::tie(b.address.vlan, b.address.mac);
    });
    return rows;
  }

  std::vector<IdRange> vlans_of(const EthernetPort &port) const {
    const Membership &membership = state_.memberships[port.number() - 1];
    return ranges_of(membership.tagged | membership.untagged);
  }

  /// Spreads the stations over the VLANs of their port, beginning with the lowest.
  static uint16_t nth_vlan(const std::vector<IdRange> &vlans, uint32_t n) {
    uint32_t count = 0;
    for (IdRange range : vlans) count += range.last - range.first + 1U;
    n %= count;
    auto range = vlans.begin();
    for (; n > uint32_t{range->last} - range->first; ++range) n -= range->last - range->first + 1U;
    return static_cast<uint16_t>(range->first + n);
  }

  Status clear(const Request &request) {
    auto record = request.record<PortRecord>();
    const EthernetPort *port = state_.find(record.slot, record.port);
    if (port == nullptr) return Status::kNotFound;
    forgotten_[port->number() - 1] = hardware_.now();
    return Status::kOk;
  }

  Status act(const Request &request) {
    auto record = request.record<PortMac>();
    const EthernetPort *port = state_.find(record.slot, record.port);
    if (port == nullptr) return Status::kNotFound;
    Address address = {record.vlan, std::to_array(record.mac)};
    bool sound = address.vlan >= 1 && address.vlan <= kLastVlan && is_unicast(address.mac);
    if (!sound) return Status::kBadValue;
    switch (record.operation) {
      case kAdd:
        return add(port->number(), address);
      case kDelete:
        return remove(port->number(), address);
      default:
        return Status::kBadValue;
    }
  }

  Status add(uint32_t port, const Address &address) {
    if (find_static(address) != statics_.end()) return Status::kExists;
    if (statics_.size() >= kMaxStatic) return Status::kFull;
    statics_.push_back({port, address});
    return Status::kOk;
  }

  Status remove(uint32_t port, const Address &address) {
    auto found = find_static(address);
    if (found == statics_.end() || found->port != port) return Status::kNotFound;
    statics_.erase(found);
    return Status::kOk;
  }

  std::vector<StaticAddress>::const_iterator find_static(const Address &address) const {
    return std::find_if(statics_.begin(), statics_.end(), [&address](const StaticAddress &entry) {
      return entry.address == address;
    });
  }

  Hardware &hardware_;
  SwitchState &state_;
  std::vector<StaticAddress> statics_;
  std::vector<TimePoint> forgotten_;  ///< when the learned addresses were cleared, by port
};

}  // namespace

std::unique_ptr<Family> make_switch_mac(Hardware &hardware, SwitchState &state) {
  return std::make_unique<SwitchMac>(hardware, state);
}

}  // namespace olt::box
