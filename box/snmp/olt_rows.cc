// Row readers for the tables of the OLT itself: VLANs, Ethernet ports, authentication of ONUs.
// Request and reply have the same layout: a selector, the index of the row, its data.

#include <algorithm>
#include <optional>
#include <vector>

#include "base/clock.h"
#include "box/snmp/families.h"

namespace olt::box {

namespace {

constexpr uint32_t kPortsInWord = 32;

class SnmpOltRows final : public Family {
 public:
  SnmpOltRows(Hardware &hardware, SwitchState &ethernet, OnuState &onus, PonAdmission &admission)
      : hardware_(hardware), ethernet_(ethernet), onus_(onus), admission_(admission) {}

  std::string_view name() const override { return "snmp-olt-rows"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 73, "row-vlan", exactly(sizeof(VlanRow)), on(this, &SnmpOltRows::vlan)},
        {kMainModule, 75, "row-port", exactly(sizeof(BasicPortRow)), on(this, &SnmpOltRows::port)},
        {kMainModule, 80, "row-authentication", exactly(sizeof(AuthRow)),
         on(this, &SnmpOltRows::authentication)},
    };
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status vlan(const Request &request, Reply &reply) {
    auto index = request.record<VlanRow>();
    if (!is_selector(index.selector)) return Status::kBadValue;
    VlanRow row = {.selector = index.selector, .vlan = index.vlan};
    if (row.selector == kNextRow) row.vlan = next_vlan(row.vlan);
    if (row.vlan > kLastVlan || !ethernet_.vlans[row.vlan]) return Status::kNotFound;
    auto description = ethernet_.descriptions.find(static_cast<uint16_t>(row.vlan));
    if (description != ethernet_.descriptions.end()) set_text(row.description, description->second);
    count_members(row);
    reply.record(row);
    return Status::kOk;
  }

  /// The first VLAN after the given id; beyond kLastVlan if there is none.
  uint32_t next_vlan(uint32_t vlan) const {
    if (vlan > kLastVlan) return vlan;
    do ++vlan;
    while (vlan <= kLastVlan && !ethernet_.vlans[vlan]);
    return vlan;
  }

  void count_members(VlanRow &row) const {
    for (const EthernetPort &port : ethernet_.ports) {
      const Membership &membership = ethernet_.memberships[port.number() - 1];
      uint32_t bit = port.number() <= kPortsInWord ? 1U << (port.number() - 1) : 0;
      bool tagged = membership.tagged[row.vlan];
      bool untagged = membership.untagged[row.vlan];
      if (tagged) row.tagged_ports |= bit;
      if (untagged) row.untagged_ports |= bit;
      if (tagged || untagged) ++row.members;
    }
  }

  Status port(const Request &request, Reply &reply) {
    auto index = request.record<BasicPortRow>();
    if (!is_selector(index.selector)) return Status::kBadValue;
    bool next = index.selector == kNextRow;
    auto number = in_slot(kEthernetSlot, ethernet_.ports.size(), index.slot, index.port, next);
    if (!number) return Status::kNotFound;
    PortRecord port = ethernet_.ports[*number - 1].record(hardware_.now());
    reply.record(BasicPortRow{.selector = index.selector,
                              .slot = port.slot,
                              .port = port.port,
                              .port_enable = port.port_enable,
                              .link_state = port.link_state,
                              .link_speed = port.link_speed,
                              .link_duplex = port.link_duplex,
                              .vlanmode_first = port.vlanmode_first,
                              .vlanmode_second = port.vlanmode_second,
                              .flowcontrol = port.flowcontrol,
                              .rstp_state = port.rstp_state,
                              .max_link = port.max_link});
    return Status::kOk;
  }

  Status authentication(const Request &request, Reply &reply) {
    auto index = request.record<AuthRow>();
    if (!is_selector(index.selector)) return Status::kBadValue;
    const Topology &topology = hardware_.topology();
    bool next = index.selector == kNextRow;
    auto interface = in_slot(kPonSlot, topology.pon_interfaces, index.slot, index.interface, next);
    if (!interface) return Status::kNotFound;
    const PonAccess &access = admission_.of(*interface);
    reply.record(AuthRow{.selector = index.selector,
                         .slot = kPonSlot,
                         .interface = *interface,
                         .auth_mode = static_cast<uint32_t>(access.mode),
                         .allowed_macs = allowed(access, AuthMode::kMac),
                         .allowed_loids = allowed(access, AuthMode::kLoid),
                         .allowed_mac_loids = allowed(access, AuthMode::kMacAndLoid),
                         .onus = topology.onus_per_interface,
                         .onus_up = count(*interface, Presence::kUp),
                         .onus_away = count(*interface, Presence::kAway),
                         .onus_blocked = count(*interface, Presence::kBlocked)});
    return Status::kOk;
  }

  static uint32_t allowed(const PonAccess &access, AuthMode mode) {
    return static_cast<uint32_t>(access.list(mode).size());
  }

  uint32_t count(uint32_t interface, Presence presence) const {
    TimePoint now = hardware_.now();
    auto onus = onus_.of_interface(interface);
    return static_cast<uint32_t>(
        std::count_if(onus.begin(), onus.end(),
                      [now, presence](const Onu &onu) { return onu.presence(now) == presence; }));
  }

  /// The number, from 1 to last, that the index (slot and number) names; the next one for the next
  /// row. Nothing if there is no such row.
  static std::optional<uint32_t> in_slot(uint32_t slot, size_t last, uint32_t index_slot,
                                         uint32_t number, bool next) {
    if (next && index_slot < slot) return 1;
    if (index_slot != slot || number > last) return std::nullopt;
    if (next) ++number;
    return number >= 1 && number <= last ? std::optional(number) : std::nullopt;
  }

  Hardware &hardware_;
  SwitchState &ethernet_;
  OnuState &onus_;
  PonAdmission &admission_;
};

}  // namespace

std::unique_ptr<Family> make_snmp_olt_rows(Hardware &hardware, SwitchState &ethernet,
                                           OnuState &onus, PonAdmission &admission) {
  return std::make_unique<SnmpOltRows>(hardware, ethernet, onus, admission);
}

}  // namespace olt::box
