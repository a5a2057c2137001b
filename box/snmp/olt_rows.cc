// The readers of tables about the OLT itself: VLANs, Ethernet ports, authentication of ONUs. Each
// row is a record that is sent and given back: a selector, the row's index, the row's data.

#include <algorithm>
#include <optional>
#include <vector>

#include "base/clock.h"
#include "box/snmp/families.h"

namespace olt::box {

namespace {

constexpr size_t kIndexAt = 4;

constexpr size_t kVlanRow = 52;
constexpr size_t kDescriptionAt = 8;
constexpr size_t kDescriptionField = 32;
constexpr size_t kTaggedPortsAt = 40;
constexpr size_t kUntaggedPortsAt = 44;
constexpr size_t kMembersAt = 48;
constexpr uint32_t kPortsInWord = 32;

constexpr size_t kPortRow = 48;
constexpr size_t kPortDataAt = 12;
/// Where the words of a row stand in the record of a port: enabled, link, speed, duplex, VLAN mode
/// (first and second value), flow control, RSTP, most links.
constexpr size_t kShownOfPort[] = {kPortEnableAt,     64, 20,           24, kVlanModeFirstAt,
                                   kVlanModeSecondAt, 40, kRstpStateAt, 76};

constexpr size_t kAuthRow = 60;

/// A row of words; the others are zero.
void write_words(Reply &reply, size_t size, std::initializer_list<uint32_t> words) {
  reply.bytes(0, std::vector<uint8_t>(size));
  size_t at = 0;
  for (uint32_t word : words) {
    reply.u32(at, word);
    at += sizeof word;
  }
}

class SnmpOltRows final : public Family {
 public:
  SnmpOltRows(Hardware &hardware, SharedSwitch ethernet, SharedOnus onus, SharedAdmission admission)
      : hardware_(hardware),
        ethernet_(std::move(ethernet)),
        onus_(std::move(onus)),
        admission_(std::move(admission)) {}

  std::string_view name() const override { return "snmp-olt-rows"; }

  std::vector<Message> messages() override {
    return {
        {kMainModule, 73, "row-vlan", exactly(kVlanRow), on(this, &SnmpOltRows::vlan)},
        {kMainModule, 75, "row-port", exactly(kPortRow), on(this, &SnmpOltRows::port)},
        {kMainModule, 80, "row-authentication", exactly(kAuthRow),
         on(this, &SnmpOltRows::authentication)},
    };
  }

  size_t footprint() const override { return sizeof *this; }

 private:
  Status vlan(const Request &request, Reply &reply) {
    uint32_t selector = request.u32(0);
    if (!is_selector(selector)) return Status::kBadValue;
    uint32_t vlan = request.u32(kIndexAt);
    if (selector == kNextRow) vlan = behind(vlan);
    if (vlan > kLastVlan || !ethernet_->vlans[vlan]) return Status::kNotFound;
    write_words(reply, kVlanRow, {selector, vlan});
    auto description = ethernet_->descriptions.find(static_cast<uint16_t>(vlan));
    if (description != ethernet_->descriptions.end()) {
      const std::string &text = description->second;
      reply.bytes(kDescriptionAt, {reinterpret_cast<const uint8_t *>(text.data()),
                                   std::min(text.size(), kDescriptionField)});
    }
    write_members(vlan, reply);
    return Status::kOk;
  }

  /// The first VLAN behind a number; a number behind the last one when there is none.
  uint32_t behind(uint32_t vlan) const {
    if (vlan > kLastVlan) return vlan;
    do ++vlan;
    while (vlan <= kLastVlan && !ethernet_->vlans[vlan]);
    return vlan;
  }

  /// One bit for each of the first ports, and how many ports there are in all.
  void write_members(uint32_t vlan, Reply &reply) const {
    uint32_t tagged = 0;
    uint32_t untagged = 0;
    uint32_t members = 0;
    for (const EthernetPort &port : ethernet_->ports) {
      const Membership &membership = ethernet_->memberships[port.number() - 1];
      uint32_t bit = port.number() <= kPortsInWord ? 1U << (port.number() - 1) : 0;
      if (membership.tagged[vlan]) tagged |= bit;
      if (membership.untagged[vlan]) untagged |= bit;
      if (membership.tagged[vlan] || membership.untagged[vlan]) ++members;
    }
    reply.u32(kTaggedPortsAt, tagged);
    reply.u32(kUntaggedPortsAt, untagged);
    reply.u32(kMembersAt, members);
  }

  Status port(const Request &request, Reply &reply) {
    uint32_t selector = request.u32(0);
    if (!is_selector(selector)) return Status::kBadValue;
    auto number = in_slot(request, kEthernetSlot, ethernet_->ports.size());
    if (!number) return Status::kNotFound;
    const EthernetPort &port = ethernet_->ports[*number - 1];
    Reply shown;
    port.show(hardware_.now(), shown);
    std::vector<uint8_t> record = shown.take();
    write_words(reply, kPortRow, {selector, kEthernetSlot, *number});
    size_t at = kPortDataAt;
    for (size_t offset : kShownOfPort) {
      reply.u32(at, Request(record).u32(offset));
      at += 4;
    }
    return Status::kOk;
  }

  Status authentication(const Request &request, Reply &reply) {
    uint32_t selector = request.u32(0);
    if (!is_selector(selector)) return Status::kBadValue;
    auto interface = in_slot(request, kPonSlot, hardware_.topology().pon_interfaces);
    if (!interface) return Status::kNotFound;
    const PonAccess &access = admission_->of(*interface);
    write_words(reply, kAuthRow,
                {selector, kPonSlot, *interface, static_cast<uint32_t>(access.mode),
                 allowed(access, AuthMode::kMac), allowed(access, AuthMode::kLoid),
                 allowed(access, AuthMode::kMacAndLoid), hardware_.topology().onus_per_interface,
                 count(*interface, Presence::kUp), count(*interface, Presence::kAway),
                 count(*interface, Presence::kBlocked)});
    return Status::kOk;
  }

  static uint32_t allowed(const PonAccess &access, AuthMode mode) {
    return static_cast<uint32_t>(access.list(mode).size());
  }

  uint32_t count(uint32_t interface, Presence presence) const {
    TimePoint now = hardware_.now();
    auto onus = onus_->of_interface(interface);
    return static_cast<uint32_t>(
        std::count_if(onus.begin(), onus.end(),
                      [now, presence](const Onu &onu) { return onu.presence(now) == presence; }));
  }

  static bool is_selector(uint32_t word) { return word == kThisRow || word == kNextRow; }

  /// What slot and number in the row's index name, or what is behind it.
  static std::optional<uint32_t> in_slot(const Request &request, uint32_t slot, size_t last) {
    bool next = request.u32(0) == kNextRow;
    uint32_t asked = request.u32(kIndexAt);
    uint32_t number = request.u32(kIndexAt + 4);
    if (next && asked < slot) return 1;
    if (asked != slot || number > last) return std::nullopt;
    if (next) ++number;
    return number >= 1 && number <= last ? std::optional(number) : std::nullopt;
  }

  Hardware &hardware_;
  SharedSwitch ethernet_;
  SharedOnus onus_;
  SharedAdmission admission_;
};

}  // namespace

std::unique_ptr<Family> make_snmp_olt_rows(Hardware &hardware, SharedSwitch ethernet,
                                           SharedOnus onus, SharedAdmission admission) {
  return std::make_unique<SnmpOltRows>(hardware, std::move(ethernet), std::move(onus),
                                       std::move(admission));
}

}  // namespace olt::box
